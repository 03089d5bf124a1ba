#include "TableSnapshots.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>
#include <gtest/gtest.h>

namespace testsupport {

Snapshot Take(QSqlDatabase db, const std::vector<const char*>& tables)
{
    Snapshot s;
    for (const char* table : tables) {
        QSqlQuery q(db);
        EXPECT_TRUE(q.exec(QString("SELECT * FROM %1").arg(table))) << table;
        const QSqlRecord r = q.record();
        while (q.next()) {
            TableRow row;
            qlonglong id = 0;
            for (int c = 0; c < r.count(); ++c) {
                const QString column = r.fieldName(c).toLower();
                if (column == "id") {
                    id = q.value(c).toLongLong();
                } else {
                    row.values[column] = q.value(c).toString();
                }
            }
            for (const char* n :
                 {"id_name", "node_name", "bus_name", "ps_name", "zone_no", "grpname"}) {
                if (row.values.count(n)) {
                    row.name = row.values[n];
                    break;
                }
            }
            s[table][id] = row;
        }
    }
    return s;
}

static std::string ChangeText(const QString& table, const QString& element, const QString& column,
                              const QString& before, const QString& after)
{
    return QStringList{table.toUpper(), element, column.toLower(), before, after}
        .join('|')
        .toStdString();
}

static std::vector<std::string> Sorted(std::vector<std::string> v)
{
    std::sort(v.begin(), v.end());
    return v;
}

void Diff(const Snapshot& before, const Snapshot& after, std::vector<std::string>& changes,
          std::vector<std::string>& added)
{
    for (const auto& [table, rows] : after) {
        const auto& old = before.at(table);
        for (const auto& [id, row] : rows) {
            auto was = old.find(id);
            if (was == old.end()) {
                added.push_back((table + '|' + row.name).toStdString());
                continue;
            }
            for (const auto& [column, value] : row.values) {
                const QString& previous = was->second.values.at(column);
                if (previous != value) {
                    changes.push_back(ChangeText(table, was->second.name, column, previous, value));
                }
            }
        }
    }
    changes = Sorted(changes);
    added = Sorted(added);
}

std::vector<std::string> Contents(const Snapshot& s)
{
    std::vector<std::string> out;
    for (const auto& [table, rows] : s) {
        for (const auto& [id, row] : rows) {
            QStringList values{table};
            for (const auto& [column, value] : row.values) {
                values << column + '=' + value;
            }
            out.push_back(values.join('|').toStdString());
        }
    }
    return Sorted(out);
}

QStringList TablesLike(QSqlDatabase db, const QString& pattern)
{
    QSqlQuery q(db);
    q.prepare("SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA=DATABASE() "
              "AND TABLE_TYPE='BASE TABLE' AND TABLE_NAME LIKE ? ORDER BY TABLE_NAME");
    q.addBindValue(pattern);
    EXPECT_TRUE(q.exec()) << q.lastError().text().toStdString();
    QStringList tables;
    while (q.next()) {
        tables << q.value(0).toString();
    }
    return tables;
}

std::map<std::string, std::string> Checksums(QSqlDatabase db, const QStringList& tables)
{
    // Not CHECKSUM TABLE: it sums the invisible row key too, and the key a row gets depends on
    // the order an INSERT ... SELECT's join hands the rows over, which the server's statistics
    // decide; the same rows in another order are the same table here. So the rows' visible
    // columns, each quoted (NULL stays apart from 'NULL'), summed as CRC32s with the count.
    std::map<std::string, QString> columns;
    QSqlQuery c(db);
    EXPECT_TRUE(c.exec("SELECT UPPER(TABLE_NAME), GROUP_CONCAT(CONCAT('QUOTE(`', COLUMN_NAME, "
                       "'`)') ORDER BY ORDINAL_POSITION) FROM information_schema.COLUMNS "
                       "WHERE TABLE_SCHEMA=DATABASE() AND EXTRA NOT LIKE '%INVISIBLE%' "
                       "GROUP BY TABLE_NAME"))
        << c.lastError().text().toStdString();
    while (c.next()) {
        columns[c.value(0).toString().toStdString()] = c.value(1).toString();
    }
    std::map<std::string, std::string> sums;
    for (const QString& table : tables) {
        const std::string name = table.toUpper().toStdString();
        const auto cols = columns.find(name);
        QSqlQuery q(db);
        const bool read =
            cols != columns.end() &&
            q.exec(QString("SELECT COUNT(*), SUM(CRC32(CONCAT_WS(0x1f, %1))) FROM %2")
                       .arg(cols->second, table)) &&
            q.next();
        EXPECT_TRUE(read) << table.toStdString() << ": " << q.lastError().text().toStdString();
        sums[name] = read ? (q.value(0).toString() + ":" + q.value(1).toString()).toStdString()
                          : std::string("missing");
    }
    return sums;
}

std::vector<std::string> TablesLeft(QSqlDatabase* db, const std::vector<const char*>& tables)
{
    std::vector<std::string> left;
    for (const char* t : tables) {
        if (QSqlQuery(*db).exec(QString("SELECT 1 FROM %1 LIMIT 0").arg(t))) {
            left.push_back(t);
        }
    }
    return left;
}

std::vector<std::string> PreviewChanges(const SaveBackPreview& p)
{
    std::vector<std::string> out;
    for (const SaveBackChange& c : p.changes) {
        out.push_back(ChangeText(c.family, c.element, c.field, c.baseValue.toString(),
                                 c.newValue.toString()));
    }
    return Sorted(out);
}

std::vector<std::string> PreviewAdditions(const SaveBackPreview& p)
{
    std::vector<std::string> out;
    for (const SaveBackAddition& a : p.additions) {
        out.push_back((a.table.toUpper() + '|' + a.name).toStdString());
    }
    return Sorted(out);
}

std::vector<std::string> Texts(const std::vector<SaveBackMessage>& messages)
{
    std::vector<std::string> out;
    for (const SaveBackMessage& m : messages) {
        out.push_back(std::to_string(m.level) + ' ' + m.text.toStdString());
    }
    return out;
}

std::vector<std::string> Texts(const std::vector<Message>& messages)
{
    std::vector<std::string> out;
    for (const Message& m : messages) {
        out.push_back(std::to_string(m.level) + ' ' + m.text);
    }
    return out;
}

SaveBackOutcome Outcome(QSqlDatabase db, const std::vector<const char*>& tables,
                        const CDatabase& base)
{
    return {Contents(Take(db, tables)), base.ModifiedTableTypes(),
            Texts(FeedbackRecorder::instance().messages())};
}

void ExpectSameOutcomeFlaggedAfterCommit(const SaveBackOutcome& whole,
                                         const std::vector<int>& inTransaction,
                                         const SaveBackOutcome& ordinary)
{
    EXPECT_EQ(whole.rows, ordinary.rows);
    EXPECT_EQ(whole.flags, ordinary.flags);
    EXPECT_EQ(inTransaction, std::vector<int>(ordinary.flags.size(), 0))
        << "every flag after the commit";
    EXPECT_EQ(whole.messages, ordinary.messages);
}

int CommitWatch::SetBakTabModifyFlag(int tableType)
{
    QSqlQuery q(*m_db);
    inTransaction.push_back(q.exec("SELECT @@in_transaction") && q.next() ? q.value(0).toInt()
                                                                          : -1);
    return CDatabase::SetBakTabModifyFlag(tableType);
}

} // namespace testsupport
