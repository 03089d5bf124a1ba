#pragma once
// The real-time database: a main-memory store of typed records with hash indexes,
// transactions and a database-wide lock.
//
// Transactions: a thread sees its own changes at once; commit() makes them durable;
// rollback() returns every table to the last commit (inserts, updates and removals);
// precommit() releases the lock and leaves the changes for a later commit or rollback.
// Locking: a thread's first read takes the database lock shared, its first write takes
// it exclusive (giving up the shared hold first), and commit, precommit or rollback
// releases it. No thread ever sees another's uncommitted changes; a reader that never
// ends its transaction keeps writers waiting, so readers end theirs too.
//
// Errors (a bad query, use of a closed database, an update through a view-only cursor
// or with no current record) go to handleError, which calls the installed handler or
// writes to standard error; the operation then gives its failure value. Nothing throws.

#include "rtdb/InlineVector.h"
#include "rtdb/dbTableDescriptor.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <string>
#include <vector>

class dbAnyCursor;
class dbQuery;

enum dbErrorClass {
    dbNoError = 0,
    dbQueryError,         // syntax, unknown field, value of the wrong kind
    dbDatabaseOpenError,  // the database is not open
    dbReadOnlyCursor,     // update or removal through a view-only cursor
    dbNullReferenceError, // update with no current record, or of a removed one
};

typedef void (*dbErrorHandler)(int error, const char* msg, int msgarg, void* context);

// The rows a select found, by number; a keyed select's one row needs no allocation.
using dbRowList = InlineVector<std::uint32_t, 1>;

// A record's place in its table.
class dbAnyReference
{
public:
    dbAnyReference() = default;
    dbAnyReference(const dbTableDescriptor* table, std::uint32_t row) : m_table(table), m_row(row)
    {}
    bool isNull() const { return m_table == nullptr; }
    std::uint32_t getOid() const { return m_row; }
    const dbTableDescriptor* getTable() const { return m_table; }

private:
    const dbTableDescriptor* m_table = nullptr;
    std::uint32_t m_row = 0;
};

class dbDatabase
{
public:
    dbDatabase();
    virtual ~dbDatabase();
    dbDatabase(const dbDatabase&) = delete;
    dbDatabase& operator=(const dbDatabase&) = delete;

    // Opens an empty database with one table per record class and links every record
    // class to it. False (and an error) when it is open already.
    bool open(const char* name = "rtdb");
    // Drops all records; waits for other threads' transactions to end first.
    void close();
    bool isOpen() const { return m_open; }
    const std::string& getName() const { return m_name; }

    // Threads need no registration here; these exist for callers written that way.
    // detach() ends the thread's hold on the lock as precommit does.
    void attach() {}
    void detach() { precommit(); }

    void commit();
    void precommit();
    void rollback();

    // Adds a copy of the record (its texts copied too) to the table; the reference, when
    // given, names the new record. False on a closed database.
    bool insertRecord(dbTableDescriptor* table, dbAnyReference* ref, const void* record);

    dbErrorHandler setErrorHandler(dbErrorHandler handler, void* context = nullptr);
    virtual void handleError(dbErrorClass error, const char* msg = nullptr, int arg = 0);
    int lastError() const { return m_lastError; }
    const std::string& lastErrorMessage() const { return m_lastMessage; }

    // Sizes, for the benchmarks and for a host that watches its memory.
    std::size_t recordCount(const dbTableDescriptor& table) const;
    std::size_t storageBytes(const dbTableDescriptor& table) const; // records and texts
    std::size_t indexBytes(const dbTableDescriptor& table) const;

    // Reports an error when a record class has never been given a database.
    static void reportWithoutDatabase(const char* msg);

private:
    friend class dbAnyCursor;
    struct Table;
    struct UndoEntry;
    struct UndoBytes;
    enum LockMode { None = 0, Shared = 1, Exclusive = 2 };

    Table* table(const dbTableDescriptor& d) const;
    int& threadMode(); // this thread's LockMode on this database
    bool beginRead();
    bool beginWrite();
    void releaseLock(int& mode);
    void finishCommit();

    // Row work, all under the exclusive lock.
    std::uint32_t insertRow(Table& t, const char* record);
    void updateRow(Table& t, std::uint32_t row, const char* record);
    void removeAllRows(Table& t);

    // The selection of a query or of all records; false after an error.
    bool selectRows(const dbTableDescriptor& d, const dbQuery* query, dbRowList& rows);
    const char* rowData(const dbTableDescriptor& d, std::uint32_t row) const;
    bool rowLive(const dbTableDescriptor& d, std::uint32_t row) const;

    const std::uint64_t m_serial; // tells this database from an earlier one at the same address
    bool m_open = false;
    std::string m_name;
    std::vector<std::unique_ptr<Table>> m_tables;
    std::vector<UndoEntry> m_undo;
    std::unique_ptr<UndoBytes> m_undoBytes; // the rows as they were before their first update
    std::uint32_t m_transaction = 1;
    std::shared_mutex m_lock;
    std::atomic<int> m_holders{0}; // threads holding the lock, for close()
    dbErrorHandler m_handler = nullptr;
    void* m_handlerContext = nullptr;
    int m_lastError = dbNoError;
    std::string m_lastMessage;
};

// Adds a record to the database its class is linked to; a null reference when there is none.
template <class T> dbAnyReference insert(const T& record)
{
    dbAnyReference ref;
    dbDatabase* db = T::dbDescriptor.getDatabase();
    if (!db) {
        dbDatabase::reportWithoutDatabase("insert into a table of no database");
        return ref;
    }
    db->insertRecord(&T::dbDescriptor, &ref, &record);
    return ref;
}
