#include "common/GbkWidth.h"

#include <cstring>

namespace {

// The length in bytes of the character at p (at most `left` bytes remain): a valid UTF-8
// sequence, else the one byte.
int characterLength(const unsigned char* p, qsizetype left)
{
    const int n = p[0] < 0x80             ? 1
                  : (p[0] & 0xE0) == 0xC0 ? 2
                  : (p[0] & 0xF0) == 0xE0 ? 3
                  : (p[0] & 0xF8) == 0xF0 ? 4
                                          : 1;
    if (n > left) {
        return 1;
    }
    for (int k = 1; k < n; ++k) {
        if ((p[k] & 0xC0) != 0x80) {
            return 1;
        }
    }
    return n;
}

// Walks `utf8` until the width would pass `limit`; gives the bytes walked and their width.
qsizetype walk(const QByteArray& utf8, int limit, int& width)
{
    const auto* p = reinterpret_cast<const unsigned char*>(utf8.constData());
    qsizetype at = 0;
    width = 0;
    while (at < utf8.size()) {
        const int w = p[at] < 0x80 ? 1 : 2;
        if (limit >= 0 && width + w > limit) {
            break;
        }
        width += w;
        at += characterLength(p + at, utf8.size() - at);
    }
    return at;
}

} // namespace

int GbkWidth(const QByteArray& utf8)
{
    int width = 0;
    walk(utf8, -1, width);
    return width;
}

int GbkWidth(const QString& text)
{
    return GbkWidth(text.toUtf8());
}

QByteArray GbkCut(const QByteArray& utf8, int limit)
{
    int width = 0;
    return utf8.left(walk(utf8, limit < 0 ? 0 : limit, width));
}

QByteArray GbkCut(const QString& text, int limit)
{
    return GbkCut(text.toUtf8(), limit);
}

void GbkCopy(char* target, const QByteArray& utf8, int limit)
{
    const QByteArray cut = GbkCut(utf8, limit);
    std::memcpy(target, cut.constData(), std::size_t(cut.size()));
    target[cut.size()] = '\0';
}
