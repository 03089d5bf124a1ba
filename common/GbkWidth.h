#pragma once
// Names measured and cut as the design counted its byte limits.
//
// Why GBK: every byte limit of the design (20 for an element, node, bus or data-group name,
// 31 for a stability scheme name and a grid caption, 100 for a case note, ...) was counted
// in the local 8-bit encoding of the platform it was written for, GBK, where an ASCII
// character takes one byte and a Chinese character two. Here the local encoding is UTF-8,
// three bytes a Chinese character: the same numbers applied to UTF-8 bytes would refuse a
// name of 7 Chinese characters that the design accepts, and cut longer ones inside a
// character. So every limit is applied to the GBK width of a text (ASCII one byte, every
// other character two) and a text is cut only between characters. The text itself stays
// UTF-8: that is what goes to the server, into the records and into files.

#include <QByteArray>
#include <QString>
#include <cstddef>

// Element, node, bus and data-group names: CHAR(20) of the design.
constexpr int kNameBytes = 20;

// The width of a text as the design counted it. A byte that is not part of a valid
// UTF-8 character counts as a character of its own.
int GbkWidth(const QByteArray& utf8);
int GbkWidth(const QString& text);

// The longest leading part of a text whose width is at most `limit`, in UTF-8; the cut
// never falls inside a character.
QByteArray GbkCut(const QByteArray& utf8, int limit);
QByteArray GbkCut(const QString& text, int limit);

// Bytes that hold, in UTF-8 with a terminator, any text of width `limit`: a character of
// width 1 takes one byte, one of width 2 at most four.
constexpr std::size_t GbkBufferSize(int limit)
{
    return std::size_t(2 * limit + 1);
}

// GbkCut(utf8, limit) into `target`, terminated; `target` holds GbkBufferSize(limit) bytes.
void GbkCopy(char* target, const QByteArray& utf8, int limit);
