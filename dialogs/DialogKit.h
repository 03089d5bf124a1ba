#pragma once
// What the selection dialogs share: their item look-ups and sorting, the placing of
// widgets, and small services on connections and texts.
//
// The dialogs were designed on list boxes whose look-up never hit on an empty text,
// ignored case both for a prefix and for a whole text, and whose sorting compared as the
// user's locale does. Qt 6's findItems matches every item on an empty prefix and is
// case-sensitive with MatchExactly, and its sortItems compares code points, case first:
// so the dialogs look items up and sort them only through these functions, which compare
// as the locale does (QCollator: Chinese in pinyin order under zh_CN), ignoring case.

#include <QByteArray>
#include <QCollator>
#include <QSqlDatabase>
#include <QString>
#include <QWidget>

class QComboBox;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

// The comparison of names in the dialogs: the default locale's, case ignored.
QCollator NameCollator();

// First item whose text begins with `text`; null for an empty text.
QListWidgetItem* FindItemBeginsWith(const QListWidget* list, const QString& text);
// First item whose whole text equals `text`; null for an empty text.
QListWidgetItem* FindItemExactMatch(const QListWidget* list, const QString& text);
// Index of the first combo-box item that begins with `text`; -1 for an empty text or no
// hit.
int FindComboItemBeginsWith(const QComboBox* combo, const QString& text);

// The items in ascending order of NameCollator.
void SortItems(QListWidget* list);
void SortItems(QComboBox* combo);

// Names a widget and places it at x, y with width w and height h; gives it back.
template <class W>
W* Place(W* widget, const char* objectName, int x, int y, int w, int h)
{
    widget->setObjectName(QString::fromLatin1(objectName));
    widget->setGeometry(x, y, w, h);
    return widget;
}

// Makes `edit` stop accepting characters once its text would be wider than `bytes` as the
// design counted them (common/GbkWidth.h): typed, pasted or committed by an input method.
void LimitToDesignBytes(QLineEdit* edit, int bytes);

// An editable combo box that neither completes nor inserts by itself: Return then
// reaches only what the dialog connects to the box's line edit.
void MakePlainEditableCombo(QComboBox* combo);

// The connection a dialog was given, or an invalid one when it was given none, so that
// its statements fail like any refused statement instead of dereferencing null.
QSqlDatabase ConnectionOrNone(QSqlDatabase* db);
