#include "common/SQLMultiInsert.h"

#include "common/Feedback.h"
#include "common/ModalBox.h"

#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>

SQLMultiInsert::SQLMultiInsert(QSqlDatabase* db, int maxRecords)
    : m_query(new QSqlQuery(*db)), m_maxRecords(maxRecords), m_count(0)
{}

SQLMultiInsert::~SQLMultiInsert()
{
    delete m_query;
}

void SQLMultiInsert::SetTableName(const QByteArray& table)
{
    m_table = table;
    ClearFldCntlst();
}

void SQLMultiInsert::SetFldNamelst(const QByteArray& fields)
{
    m_fields = fields;
}

void SQLMultiInsert::ClearFldCntlst()
{
    m_content = "";
    m_count = 0;
}

int SQLMultiInsert::AddRecord(const QByteArray& values)
{
    if (m_count < 1) {
        m_content += "\n (";
    } else {
        m_content += ",\n (";
    }
    m_content += values;
    m_content += ")";
    ++m_count;
    // Equality, not "at least": a maximum of 0 or below never sends by itself.
    if (m_count == m_maxRecords) {
        exec();
    }
    return m_count;
}

bool SQLMultiInsert::exec()
{
    if (m_count == 0) {
        return true;
    }
    const QByteArray statement = "insert into " + m_table + "(" + m_fields + ") values" + m_content;
    const bool ok = ExecStatement(*m_query, statement);
    m_failed |= !ok;
    if (!ok) {
        ShowModalBox(ModalBoxKind::Information, QStringLiteral("Fail"),
                     QObject::tr("Fail to excute SQL:") + QObject::tr(statement.constData()));
    }
    ClearFldCntlst();
    return ok;
}
