#include "ShowDialog.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QThread>
#include <QTimer>
#include <QWindow>

namespace gallery {

bool WaitExposed(QWidget* widget, int ms)
{
    const QDeadlineTimer deadline(ms);
    for (;;) {
        const QWindow* window = widget->window()->windowHandle();
        if (window && window->isExposed()) {
            return true;
        }
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(5);
    }
}

void WhenShown(QDialog* dialog, std::function<void()> step, std::function<void()> notShown)
{
    QTimer::singleShot(0, dialog, [dialog, step, notShown] {
        if (WaitExposed(dialog)) {
            step();
        } else if (notShown) {
            notShown();
        }
        if (dialog->isVisible()) {
            dialog->reject();
        }
    });
}

bool SaveScreenshot(QWidget* widget, const QString& path)
{
    return QDir().mkpath(QFileInfo(path).absolutePath()) && widget->grab().save(path, "PNG");
}

} // namespace gallery
