#include "common/Feedback.h"

#include "platform/WinDockFeedback.h"

#include <cstdarg>
#include <cstdio>

namespace {
QByteArray vformat(const char* format, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (needed <= 0) {
        return QByteArray();
    }
    QByteArray text(needed, '\0');
    std::vsnprintf(text.data(), size_t(needed) + 1, format, args);
    return text;
}
} // namespace

QByteArray FormatText(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    QByteArray text = vformat(format, args);
    va_end(args);
    return text;
}

void ShowMessage(const QByteArray& text, int level)
{
    WinDockFeedback::ShowMessage(text.constData(), "", "", "", level);
}

void ShowMessagef(int level, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const QByteArray text = vformat(format, args);
    va_end(args);
    ShowMessage(text, level);
}
