#pragma once
// What the selection dialogs share: their item look-ups, the placing of widgets, and
// small services on connections and texts.
//
// The dialogs were designed on list boxes whose look-up never hit on an empty text and
// ignored case, both for a prefix and for a whole text. Qt 6's findItems matches every
// item on an empty prefix and is case-sensitive with MatchExactly, so the dialogs look
// items up only through these functions.

#include <QByteArray>
#include <QSqlDatabase>
#include <QString>
#include <QWidget>

class QComboBox;
class QListWidget;
class QListWidgetItem;

// First item whose text begins with `text`, ignoring case; null for an empty text.
QListWidgetItem* FindItemBeginsWith(const QListWidget* list, const QString& text);
// First item whose whole text equals `text`, ignoring case; null for an empty text.
QListWidgetItem* FindItemExactMatch(const QListWidget* list, const QString& text);
// Index of the first combo-box item that begins with `text`, ignoring case; -1 for an
// empty text or no hit.
int FindComboItemBeginsWith(const QComboBox* combo, const QString& text);

// Names a widget and places it at x, y with width w and height h; gives it back.
template <class W>
W* Place(W* widget, const char* objectName, int x, int y, int w, int h)
{
    widget->setObjectName(QString::fromLatin1(objectName));
    widget->setGeometry(x, y, w, h);
    return widget;
}

// An editable combo box that neither completes nor inserts by itself: Return then
// reaches only what the dialog connects to the box's line edit.
void MakePlainEditableCombo(QComboBox* combo);

// The connection a dialog was given, or an invalid one when it was given none, so that
// its statements fail like any refused statement instead of dereferencing null.
QSqlDatabase ConnectionOrNone(QSqlDatabase* db);

// The local 8-bit form of a text cut to at most `bytes` bytes, as the dialogs put user
// texts into fixed name buffers.
QByteArray Local8BitPrefix(const QString& text, int bytes);
