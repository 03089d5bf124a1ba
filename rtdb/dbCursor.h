#pragma once
// Cursors: a selection of records of one class and a copy of the current one.
//
// A select positions the cursor on the first record found and fetches it into the
// cursor's record; gotoNext() moves on and fetch() copies the record in, next() does
// both. Text fields of a fetched record point into the database's storage and stay good
// while the record stands. update() writes the cursor's record back to the current
// record; removeAll() deletes every record of the class. A view-only cursor refuses both.

#include "rtdb/dbDatabase.h"
#include "rtdb/dbQuery.h"

#include <cstdint>
#include <vector>

enum dbCursorType { dbCursorViewOnly = 0, dbCursorForUpdate = 1 };

class dbAnyCursor
{
public:
    dbAnyCursor(dbTableDescriptor& table, dbCursorType type, char* record);
    dbAnyCursor(const dbAnyCursor&) = delete;
    dbAnyCursor& operator=(const dbAnyCursor&) = delete;

    // All records of the class; the count found.
    int select();
    // The records that match; the count found, 0 when none or after an error.
    int select(dbQuery& query, void* paramStruct = nullptr);
    int select(dbQuery& query, dbCursorType type, void* paramStruct = nullptr);

    int getNumberOfRecords() const { return static_cast<int>(m_rows.size()); }
    bool isEmpty() const { return m_rows.empty(); }
    bool isLast() const { return m_pos + 1 >= m_rows.size(); }
    bool gotoNext();
    bool gotoPrev();
    bool gotoFirst();
    bool gotoLast();
    // Copies the current record into the cursor's record.
    void fetch();
    dbAnyReference currentId() const;

    bool update();
    void removeAll();

    dbDatabase* getDatabase() const { return m_table.getDatabase(); }

protected:
    int selectWith(dbQuery* query); // all records when null
    void reportError(dbErrorClass error, const char* msg) const;

    dbTableDescriptor& m_table;
    dbCursorType m_type;
    char* m_record;
    dbRowList m_rows;
    std::size_t m_pos = 0;
    dbDatabase* m_selectedIn = nullptr; // the database the selection came from
};

// The typed cursor of record class T, holding one record of the class.
template <class T> class dbCursor : public dbAnyCursor
{
public:
    explicit dbCursor(dbCursorType type = dbCursorViewOnly)
        : dbAnyCursor(T::dbDescriptor, type, reinterpret_cast<char*>(&m_rec)), m_rec()
    {}

    T* get() { return &m_rec; }
    T* operator->() { return &m_rec; }
    T& operator*() { return m_rec; }
    // Moves to the next record and fetches it; null at the end.
    T* next()
    {
        if (!gotoNext()) {
            return nullptr;
        }
        fetch();
        return &m_rec;
    }
    T* prev()
    {
        if (!gotoPrev()) {
            return nullptr;
        }
        fetch();
        return &m_rec;
    }

private:
    T m_rec;
};
