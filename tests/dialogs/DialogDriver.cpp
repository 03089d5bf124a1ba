#include "DialogDriver.h"

#include "ShowDialog.h"

#include <QDialog>
#include <gtest/gtest.h>
#include <QDir>
#include <QInputMethodEvent>
#include <QListWidget>
#include <QTableWidget>
#include <QTest>

namespace dialogtest {

void WhenShown(QDialog* dialog, std::function<void()> user)
{
    gallery::WhenShown(dialog, std::move(user), [] { ADD_FAILURE() << "the dialog never showed"; });
}

void ShowAndWait(QWidget* widget)
{
    widget->show();
    widget->activateWindow();
    if (!gallery::WaitExposed(widget)) {
        ADD_FAILURE() << "the widget never showed";
    }
}

void ClickItem(QListWidget* list, int row)
{
    QListWidgetItem* item = list->item(row);
    list->scrollToItem(item);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
}

QStringList Texts(const QListWidget* list)
{
    QStringList out;
    for (int k = 0; k < list->count(); ++k) {
        out << list->item(k)->text();
    }
    return out;
}

QString Current(const QListWidget* list)
{
    return list->currentItem() ? list->currentItem()->text() : QString();
}

void ClickCell(QTableWidget* table, int row, int column)
{
    const QModelIndex index = table->model()->index(row, column);
    table->scrollTo(index);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center());
}

void CommitText(QWidget* editor, const QString& text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(editor, &event);
}

QString ScreenshotPath(const QString& name)
{
    QDir().mkpath(QStringLiteral(CALCDATA_SCREENSHOT_DIR));
    return QStringLiteral(CALCDATA_SCREENSHOT_DIR "/%1.png").arg(name);
}

QString SaveScreenshot(QWidget* widget, const QString& name)
{
    const QString path = ScreenshotPath(name);
    return gallery::SaveScreenshot(widget, path) ? path : QString();
}

} // namespace dialogtest
