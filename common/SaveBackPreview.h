#pragma once
// What a save-back would do, found without doing it: the values it would change, the rows
// it would add, the change flags it would raise and the messages it would show. The
// save-back pattern owns the run (CSaveBackPattern::Preview, for the transfers' preview
// calls) and the preview it fills; the reads below fill it through the run's connection and
// exec point. A module shows the changes in a grid and the report as text.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <functional>
#include <vector>

class QSqlDatabase;
class QSqlQuery;

// One value a save-back would write over a base row (in place, or into the row's copy in
// the data group), with both values in the base row's own unit.
struct SaveBackChange
{
    QString family;   // the working copy, e.g. "CDB_GENERATBAK"
    QString element;  // the base row's ID_Name
    qlonglong id = 0; // the base row's id
    QString field;    // the working copy's column
    QVariant baseValue;
    QVariant newValue;
    // A row the data group held before the save-back (an earlier save into the same group),
    // which the update into the group rewrites with the copy; `id` and `baseValue` are then
    // that row's own.
    bool groupRow = false;
};

// One row a save-back would add: an orphan element into the data group, the group's own
// row, or a node, bus, station or zone that an orphan needs.
struct SaveBackAddition
{
    QString table;       // the working copy, e.g. "CDB_NODEBAK"
    QString name;        // element, node, bus, station or group name, or zone number
    bool orphan = false; // a job row without a base row, saved into the group
    QStringList columns; // the insert's columns
    QVariantList values; // the row as the insert would write it
};

struct SaveBackMessage
{
    int level = 0;
    QByteArray text; // as the save-back would show it
    QString why;     // for a failure: the server's reason, or the preview's
};

struct SaveBackPreview
{
    QString groupName;
    bool newGroup = false;
    int result = 0;  // what the save-back would return: 0, or 1 where it would stop
    QString refused; // set when the preview itself could not go on; result is then 1
    std::vector<SaveBackChange> changes;
    std::vector<SaveBackAddition> additions;
    std::vector<int> flags; // SetBakTabModifyFlag's table types, in the order of the calls
    std::vector<SaveBackMessage> messages;

    // The number of elements with changes (a row of the grid is one value); the group's
    // rewritten rows are those elements again.
    int ChangedElements() const;
    std::vector<SaveBackAddition> AdditionsTo(const QString& table) const;
    // A short text: counts, the first changes and additions, the flags, where it stops.
    QString Report() const;
};

// The reads a preview makes in place of a save-back's writes, on the run's connection and
// through its one exec point (`send`), into the run's preview.
class SaveBackPreviewReads
{
public:
    using Send = std::function<bool(QSqlQuery&, const QByteArray&)>;
    SaveBackPreviewReads(QSqlDatabase* db, Send send, SaveBackPreview& preview)
        : m_pDB(db), m_send(std::move(send)), m_preview(preview)
    {}

    enum class Listing {
        None,    // a copy into the group: its values are the changes the updates give
        Rows,    // the rows it adds
        Orphans, // the rows it adds, marked as job rows without a base row
    };
    // A write that is not run: checked by the server without being executed, an insert's
    // columns against its values, and its rows read by its own select as `listing` says.
    // False with the reason in `why`, or with the preview refused.
    bool Write(const QByteArray& sql, Listing listing, QString& why) const;
    // The values that the in-place `updates` would change, and those that `groupUpdates`
    // (the updates into a data group after the copy) would write over rows the group holds
    // already. False, with the preview refused, where they cannot be read.
    bool Changes(const std::vector<QByteArray>& updates,
                 const std::vector<QByteArray>& groupUpdates) const;

private:
    bool Additions(const QByteArray& sql, bool orphan, QString& why) const;

    QSqlDatabase* m_pDB;
    Send m_send;
    SaveBackPreview& m_preview;
};
