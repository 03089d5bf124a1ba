#pragma once
// Values of a table row as the real-time records take them, and the look-up of the record a
// row belongs to. Shared by the load-flow and stability imports and the stability case
// set-up, which read their job and case tables row by row on the thread attached to the
// real-time database.

#include "common/Feedback.h"
#include "rtdb/rtdb.h"

#include <QByteArray>

class CSqlRows;
class QSqlQuery;

// Room for a name of 20 bytes and the longest suffix, with margin for longer data.
constexpr int kRecordIdSize = 256;

// A value cut to an integer towards zero, as a C cast does, kept within int; NaN gives 0.
int TruncatedInt(double v);

// A column as a 32-bit real (the records' "real").
float RowReal(const QSqlQuery& q, int column);
float RowReal(const CSqlRows& rows, int column);

// A column as an integer the way the suite's Qt 3 read it: a floating value loses its
// fraction (Qt 6's QVariant::toInt() would round 12.7 to 13), an integer stays as it is.
int RowInt(const QSqlQuery& q, int column);
int RowInt(const CSqlRows& rows, int column);

// Sets or clears `bit` in a flag word.
inline void SetFlagBit(unsigned int& word, unsigned int bit, bool on)
{
    word = on ? (word | bit) : (word & ~bit);
}

// Takes a row's name (local 8-bit, cut to leave room for the suffix) into `id`, which holds
// kRecordIdSize bytes, formatted by `format`: "%s" and a suffix ("%s_ac"), which is appended
// as it stands, or any other printf text with one "%s".
void FormRecordId(char* id, const QByteArray& name, const char* format);

// Selects the record whose key answers `query` ("id =", "id_name =") with `id` on
// `cursor`; when there is none, shows `missing` formatted with `shown` at level 2.
template <class T>
bool FindRecord(dbCursor<T>& cursor, const char* query, const char* id, const char* missing,
                const char* shown)
{
    dbQuery q;
    q = query, id;
    if (cursor.select(q) < 1) {
        ShowMessagef(MSG_ERROR, missing, shown);
        return false;
    }
    return true;
}
