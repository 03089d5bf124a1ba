#include "dialogs/DialogKit.h"

#include <QComboBox>
#include <QListWidget>

namespace {
QListWidgetItem* firstOf(const QListWidget* list, const QString& text, Qt::MatchFlags flags)
{
    if (text.isEmpty()) {
        return nullptr;
    }
    // Without Qt::MatchCaseSensitive both modes ignore case; hits come in row order.
    const QList<QListWidgetItem*> hits = list->findItems(text, flags);
    return hits.isEmpty() ? nullptr : hits.first();
}
} // namespace

QListWidgetItem* FindItemBeginsWith(const QListWidget* list, const QString& text)
{
    return firstOf(list, text, Qt::MatchStartsWith);
}

QListWidgetItem* FindItemExactMatch(const QListWidget* list, const QString& text)
{
    return firstOf(list, text, Qt::MatchFixedString);
}

int FindComboItemBeginsWith(const QComboBox* combo, const QString& text)
{
    return text.isEmpty() ? -1 : combo->findText(text, Qt::MatchStartsWith);
}

void MakePlainEditableCombo(QComboBox* combo)
{
    combo->setEditable(true);
    combo->setCompleter(nullptr);
    combo->setInsertPolicy(QComboBox::NoInsert);
}

QSqlDatabase ConnectionOrNone(QSqlDatabase* db)
{
    return db ? *db : QSqlDatabase();
}

QByteArray Local8BitPrefix(const QString& text, int bytes)
{
    return text.toLocal8Bit().left(bytes);
}
