#pragma once
// Gathers rows and sends them to the server many at a time, as one multi-row insert.
//
// Order of use: construct, SetTableName, SetFldNamelst, AddRecord per row, and exec
// once at the end for the rows still waiting. A full batch is sent by AddRecord
// itself. Values are not escaped here: the caller quotes each value, its texts through SqlText.

#include <QByteArray>

class QSqlDatabase;
class QSqlQuery;

class SQLMultiInsert
{
public:
    SQLMultiInsert(QSqlDatabase* db, int maxRecords);
    // Rows not yet sent are lost: the destructor does not flush.
    virtual ~SQLMultiInsert();

    // The object owns its query; a copy would delete it twice, so there is none.
    SQLMultiInsert(const SQLMultiInsert&) = delete;
    SQLMultiInsert& operator=(const SQLMultiInsert&) = delete;

    int GetMaxRecord() const { return m_maxRecords; }
    int GetRecNum() const { return m_count; }

    // Sets the target table and drops the rows gathered so far.
    void SetTableName(const QByteArray& table);
    // Sets the column list (comma-separated, no parentheses); gathered rows stay.
    void SetFldNamelst(const QByteArray& fields);
    // Drops the rows gathered so far.
    void ClearFldCntlst();

    // Adds one row (its values, comma-separated and quoted by the caller). When the
    // batch is full it is sent at once; the result of that send is not returned.
    // Returns the rows now waiting: 0 right after a send.
    int AddRecord(const QByteArray& values);

    // Sends the rows waiting, as one statement. True with nothing to send. On failure
    // a box shows the statement, and the rows are dropped all the same.
    bool exec();
    // Whether a send of this object failed, the ones AddRecord makes included.
    bool Failed() const { return m_failed; }

private:
    QSqlQuery* m_query;   // owned
    QByteArray m_table;   // target table
    QByteArray m_fields;  // column list
    QByteArray m_content; // rows gathered so far, in statement form
    int m_maxRecords;     // rows per statement
    int m_count;          // rows in m_content
    bool m_failed = false;
};
