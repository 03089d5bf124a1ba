#pragma once
// What a save-back would do, found without doing it: the values it would change, the rows
// it would add, the change flags it would raise and the messages it would show. Made by
// CSaveBackPattern::Preview for the transfers' preview calls; a module shows the changes
// in a grid and the report as text.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <vector>

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

    // The number of elements with changes (a row of the grid is one value).
    int ChangedElements() const;
    std::vector<SaveBackAddition> AdditionsTo(const QString& table) const;
    // A short text: counts, the first changes and additions, the flags, where it stops.
    QString Report() const;
};
