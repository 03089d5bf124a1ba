#include "rtdb/dbCursor.h"

#include <cstring>

dbAnyCursor::dbAnyCursor(dbTableDescriptor& table, dbCursorType type, char* record)
    : m_table(table), m_type(type), m_record(record)
{}

void dbAnyCursor::reportError(dbErrorClass error, const char* msg) const
{
    if (dbDatabase* db = m_table.getDatabase()) {
        db->handleError(error, msg);
    } else {
        dbDatabase::reportWithoutDatabase(msg);
    }
}

int dbAnyCursor::select()
{
    return selectWith(nullptr);
}

int dbAnyCursor::select(dbQuery& query, void*)
{
    return selectWith(&query);
}

int dbAnyCursor::selectWith(dbQuery* query)
{
    m_rows.clear();
    m_pos = 0;
    m_selectedIn = m_table.getDatabase();
    if (!m_selectedIn) {
        reportError(dbDatabaseOpenError, "select on a table of no database");
        return 0;
    }
    if (!m_selectedIn->selectRows(m_table, query, m_rows)) {
        return 0;
    }
    if (!m_rows.empty()) {
        fetch();
    }
    return static_cast<int>(m_rows.size());
}

int dbAnyCursor::select(dbQuery& query, dbCursorType type, void* paramStruct)
{
    m_type = type;
    return select(query, paramStruct);
}

bool dbAnyCursor::gotoNext()
{
    if (m_pos + 1 >= m_rows.size()) {
        return false;
    }
    ++m_pos;
    return true;
}

bool dbAnyCursor::gotoPrev()
{
    if (m_rows.empty() || m_pos == 0) {
        return false;
    }
    --m_pos;
    return true;
}

bool dbAnyCursor::gotoFirst()
{
    m_pos = 0;
    return !m_rows.empty();
}

bool dbAnyCursor::gotoLast()
{
    if (m_rows.empty()) {
        return false;
    }
    m_pos = m_rows.size() - 1;
    return true;
}

void dbAnyCursor::fetch()
{
    if (m_rows.empty() || !m_selectedIn || m_selectedIn != m_table.getDatabase()) {
        return;
    }
    if (const char* row = m_selectedIn->rowData(m_table, m_rows[m_pos])) {
        std::memcpy(m_record, row, m_table.recordSize());
    }
}

dbAnyReference dbAnyCursor::currentId() const
{
    if (m_rows.empty()) {
        return dbAnyReference();
    }
    return dbAnyReference(&m_table, m_rows[m_pos]);
}

bool dbAnyCursor::update()
{
    dbDatabase* db = m_table.getDatabase();
    if (m_type != dbCursorForUpdate) {
        reportError(dbReadOnlyCursor, "update through a view-only cursor");
        return false;
    }
    if (m_rows.empty() || m_selectedIn != db) {
        reportError(dbNullReferenceError, "update with no current record");
        return false;
    }
    if (!db->beginWrite()) {
        return false;
    }
    const std::uint32_t row = m_rows[m_pos];
    if (!db->rowLive(m_table, row)) {
        reportError(dbNullReferenceError, "update of a removed record");
        return false;
    }
    db->updateRow(*db->table(m_table), row, m_record);
    return true;
}

void dbAnyCursor::removeAll()
{
    dbDatabase* db = m_table.getDatabase();
    if (m_type != dbCursorForUpdate) {
        reportError(dbReadOnlyCursor, "removal through a view-only cursor");
        return;
    }
    if (!db) {
        reportError(dbDatabaseOpenError, "removal from a table of no database");
        return;
    }
    if (!db->beginWrite()) {
        return;
    }
    db->removeAllRows(*db->table(m_table));
    m_rows.clear();
    m_pos = 0;
}
