#pragma once
// Driving the dialogs in tests: a modal dialog's exec() runs while a queued step plays
// the user's part; clicks on list items and table cells; text committed as an input
// method commits it (Chinese); screenshots saved under the build folder.

#include <QStringList>
#include <functional>

class QDialog;
class QListWidget;
class QTableWidget;
class QWidget;

namespace dialogtest {

// Queues `user` to run once `dialog` shows (inside its exec()), then closes the dialog
// if `user` left it open, so that a failing step never blocks the test. Call it right
// before the call that runs exec().
void WhenShown(QDialog* dialog, std::function<void()> user);

// Shows a modeless widget and waits until it is exposed.
void ShowAndWait(QWidget* widget);

void ClickItem(QListWidget* list, int row);
// The texts of a list's items; the text of its current item ("" when none).
QStringList Texts(const QListWidget* list);
QString Current(const QListWidget* list);
void ClickCell(QTableWidget* table, int row, int column);
// Inserts `text` at the editor's cursor as an input method commits it (Chinese).
void CommitText(QWidget* editor, const QString& text);

// Saves widget->grab() as screenshots/<name>.png and gives the path ("" on failure).
QString SaveScreenshot(QWidget* widget, const QString& name);
QString ScreenshotPath(const QString& name);

} // namespace dialogtest
