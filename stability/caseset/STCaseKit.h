#pragma once
// What the files of the stability case set-up share: the statement runner, the text of a
// column cut as the design counted it, the family switches of the case tables, the
// emptying of a record table and the bus numbers of nodes and of buses that faults and
// models add.

#include "records/StabilityCaseRecords.h"

#include <QByteArray>

class QSqlDatabase;
class QSqlQuery;

namespace stcase {

bool run(QSqlQuery& q, const QByteArray& sql);
// Column `column` in the local 8-bit encoding, cut to `maxBytes` (GBK count) when given.
QByteArray text(const QSqlQuery& q, int column, int maxBytes = -1);
// The switch of a family in the case tables: the first column of `sql` (a flag select
// on `table` for the case). Gives -1 when the family goes on (the flag is `on`, or no row
// came), else what the family returns at once: 0 when a row turns it off, 1 after
// `message` when the select fails.
int switchedOff(QSqlDatabase* db, const char* sql, const char* table, int caseNo, int on,
                const char* message);
// The number of the bus of node `name`, -1 for an empty or unknown name.
int nodeBusNo(const char* name);
// The number of the bus `name`. A name that bs does not know becomes a new bus numbered
// one above the largest (-1 when bs is empty), so that later faults and models find it.
// Its q is 0, as the fault routine sets it and as the record's constructor leaves it for
// the model routine.
int newBusNo(const char* name);

// Empties the record table of class T.
template <class T> void removeAllRecords()
{
    dbCursor<T> cursor(dbCursorForUpdate);
    cursor.removeAll();
}

} // namespace stcase
