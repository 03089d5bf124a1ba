// The preview's reads: the writes it does not run (checked by the server, the rows they
// would add read through their own select), the changed values read by the updates' own
// tables and condition, and the report.

#include "common/SaveBackPreview.h"
#include "common/Feedback.h"
#include "common/SaveBackStatementText.h"
#include "common/SaveBackStatements.h"

#include <QHash>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

using namespace sbo;

namespace {

// Text columns come from the driver as bytes; a grid wants text.
QVariant Shown(const QVariant& v)
{
    if (v.typeId() == QMetaType::QByteArray) {
        return QString::fromLocal8Bit(v.toByteArray());
    }
    return v;
}

// The column that names an added row, by preference.
int NameColumn(const QList<QByteArray>& columns)
{
    for (const char* name : {"ID_Name", "Node_Name", "Bus_Name", "PS_Name", "Zone_No", "GrpName"}) {
        for (int c = 0; c < columns.size(); ++c) {
            if (columns[c].compare(name, Qt::CaseInsensitive) == 0) {
                return c;
            }
        }
    }
    return -1;
}

} // namespace

bool SaveBackPreviewReads::Write(const QByteArray& sql, Listing listing, QString& why) const
{
    QSqlQuery q(*m_pDB);
    QSqlField text(QStringLiteral("sql"), QMetaType(QMetaType::QString));
    text.setValue(QString::fromLocal8Bit(sql));
    const QByteArray quoted = m_pDB->driver()->formatValue(text).toLocal8Bit();
    if (!m_send(q, FormatText(SQL_PREVIEW_PREPARE, quoted.constData()))) {
        why = q.lastError().text();
        return false;
    }
    m_send(q, SQL_PREVIEW_DEALLOCATE);

    // What the server finds only when it runs an insert: a column named twice, a number of
    // values that differs from the columns.
    sbtext::Insert insert;
    if (!sbtext::ParseInsert(sql, insert, BackslashEscapes(m_pDB))) {
        return true; // an update: its rows are read by PreviewChanges, or do not stand yet
    }
    QSet<QByteArray> seen;
    for (const QByteArray& c : insert.columns) {
        if (seen.contains(c.toLower())) {
            why = QString::fromLocal8Bit(FormatText(MSG_PREVIEW_DUPLICATE_COLUMN, c.constData()));
            return false;
        }
        seen.insert(c.toLower());
    }
    if (insert.values != insert.columns.size()) {
        why = QString::fromLocal8Bit(
            FormatText(MSG_PREVIEW_COLUMN_COUNT, int(insert.columns.size()), insert.values));
        return false;
    }
    if (listing == Listing::None) {
        return true;
    }
    return Additions(sql, listing == Listing::Orphans, why);
}

bool SaveBackPreviewReads::Additions(const QByteArray& sql, bool orphan, QString& why) const
{
    sbtext::Insert insert;
    sbtext::ParseInsert(sql, insert, BackslashEscapes(m_pDB));
    QSqlQuery rows(*m_pDB);
    rows.setForwardOnly(true);
    if (!m_send(rows, insert.select)) {
        why = rows.lastError().text();
        return false;
    }
    const int name = NameColumn(insert.columns);
    QStringList columns;
    for (const QByteArray& c : insert.columns) {
        columns << QString::fromLocal8Bit(c);
    }
    while (rows.next()) {
        SaveBackAddition a;
        a.table = QString::fromLocal8Bit(insert.table);
        a.orphan = orphan;
        a.columns = columns;
        for (int c = 0; c < insert.columns.size(); ++c) {
            a.values << Shown(rows.value(c));
        }
        if (name >= 0) {
            a.name = a.values[name].toString();
        }
        m_preview.additions.push_back(a);
    }
    return true;
}

bool SaveBackPreviewReads::Changes(const std::vector<QByteArray>& updates,
                                   const std::vector<QByteArray>& groupUpdates) const
{
    // One value per row and column: where several updates assign it (the windings of a
    // three-winding transformer each set Valid), the last one stands, as in the row.
    // A family with one update has nothing to merge, and most of a changed row's columns are
    // equal: their values are not even fetched. The updates into the group, read before the
    // copy stands, find the rows the group held already.
    std::vector<std::pair<QByteArray, bool>> reads;
    for (const QByteArray& sql : updates) {
        reads.emplace_back(sql, false);
    }
    for (const QByteArray& sql : groupUpdates) {
        reads.emplace_back(sql, true);
    }
    const bool merge = reads.size() > 1;
    struct Value
    {
        SaveBackChange change;
        bool same = true;
    };
    std::vector<Value> values;
    QHash<QString, int> at;
    for (const auto& [sql, groupRow] : reads) {
        sbtext::Update update;
        if (!sbtext::ParseUpdate(sql, update)) {
            m_preview.refused =
                QString::fromLocal8Bit(FormatText(MSG_PREVIEW_UNREADABLE, sql.constData()));
            return false;
        }
        QByteArray columns;
        for (const auto& a : update.assignments) {
            columns += (columns.isEmpty() ? "" : ", ") + ("a." + a.first) + "<=>b." + a.second +
                       ", a." + a.first + ", b." + a.second;
        }
        QSqlQuery q(*m_pDB);
        q.setForwardOnly(true);
        const QByteArray read =
            FormatText(SQL_PREVIEW_CHANGES, columns.constData(), update.table.constData(),
                       update.temp.constData(), update.where.constData());
        if (!m_send(q, read)) {
            m_preview.refused =
                QString::fromLocal8Bit(FormatText(MSG_PREVIEW_UNREADABLE, sql.constData())) +
                QStringLiteral("（") + q.lastError().text() + QStringLiteral("）");
            return false;
        }
        const QString family = QString::fromLocal8Bit(update.table);
        QStringList fields;
        for (const auto& a : update.assignments) {
            fields << QString::fromLocal8Bit(a.first);
        }
        while (q.next()) {
            const qlonglong id = q.value(0).toLongLong();
            QString element;
            for (int k = 0; k < fields.size(); ++k) {
                const bool same = q.value(2 + 3 * k).toInt() != 0;
                const QString key =
                    merge ? QString::number(id) + QLatin1Char('\n') + fields[k].toLower()
                          : QString();
                auto found = merge ? at.find(key) : at.end();
                if (same && found == at.end()) {
                    continue;
                }
                if (element.isNull()) {
                    element = Shown(q.value(1)).toString();
                }
                if (found == at.end()) {
                    if (merge) {
                        found = at.insert(key, int(values.size()));
                    }
                    values.push_back(
                        {{family, element, id, fields[k], Shown(q.value(3 + 3 * k)), {}, groupRow},
                         true});
                }
                Value& v = merge ? values[*found] : values.back();
                v.change.newValue = Shown(q.value(4 + 3 * k));
                v.same = same;
            }
        }
    }
    for (const Value& v : values) {
        if (!v.same) {
            m_preview.changes.push_back(v.change);
        }
    }
    return true;
}

int SaveBackPreview::ChangedElements() const
{
    QSet<QString> elements;
    for (const SaveBackChange& c : changes) {
        if (!c.groupRow) {
            elements.insert(c.family + QLatin1Char('\n') + QString::number(c.id));
        }
    }
    return int(elements.size());
}

std::vector<SaveBackAddition> SaveBackPreview::AdditionsTo(const QString& table) const
{
    std::vector<SaveBackAddition> out;
    for (const SaveBackAddition& a : additions) {
        if (a.table.compare(table, Qt::CaseInsensitive) == 0) {
            out.push_back(a);
        }
    }
    return out;
}

QString SaveBackPreview::Report() const
{
    constexpr int shown = 10; // lines of changes and of additions; the grid has them all
    QStringList lines;
    lines << (newGroup ? QStringLiteral("回存预览：变化存入数据组 %1").arg(groupName)
                       : QStringLiteral("回存预览：原位修改"));
    QStringList counts;
    counts
        << QStringLiteral("变化元件 %1 个、数值 %2 项").arg(ChangedElements()).arg(changes.size());
    QStringList tables;
    QHash<QString, int> added;
    for (const SaveBackAddition& a : additions) {
        if (!added.contains(a.table)) {
            tables << a.table;
        }
        ++added[a.table];
    }
    for (const QString& t : tables) {
        counts << QStringLiteral("新增 %1 %2 行").arg(t).arg(added[t]);
    }
    lines << counts.join(QStringLiteral("；"));
    for (std::size_t k = 0; k < changes.size() && k < shown; ++k) {
        const SaveBackChange& c = changes[k];
        lines << QStringLiteral("  %1 %2 %3：%4 → %5%6")
                     .arg(c.family, c.element, c.field, c.baseValue.toString(),
                          c.newValue.toString(),
                          c.groupRow ? QStringLiteral("（数据组中已有的行）") : QString());
    }
    if (changes.size() > shown) {
        lines << QStringLiteral("  ……另有 %1 项").arg(changes.size() - shown);
    }
    for (std::size_t k = 0; k < additions.size() && k < shown; ++k) {
        const SaveBackAddition& a = additions[k];
        lines << QStringLiteral("  新增 %1 %2%3")
                     .arg(a.table, a.name,
                          a.orphan ? QStringLiteral("（无基础库元件）") : QString());
    }
    if (additions.size() > shown) {
        lines << QStringLiteral("  ……另有新增 %1 行").arg(additions.size() - shown);
    }
    if (!flags.empty()) {
        QStringList f;
        for (int t : flags) {
            f << QString::number(t);
        }
        lines << QStringLiteral("将置修改标志：") + f.join(QLatin1Char(' '));
    }
    for (const SaveBackMessage& m : messages) {
        if (!m.why.isEmpty()) {
            lines << QStringLiteral("将出错：%1（%2）").arg(QString::fromLocal8Bit(m.text), m.why);
        }
    }
    if (!refused.isEmpty()) {
        lines << refused;
    } else if (result != 0) {
        lines << QStringLiteral("回存将在此停止，返回 1。");
    }
    return lines.join(QLatin1Char('\n'));
}
