#include "common/ModalBox.h"

#include <QApplication>
#include <QGuiApplication>
#include <QMessageBox>
#include <QThread>
#include <cstdio>
#include <mutex>

namespace {
std::mutex hookMutex;
ModalBoxHook& hookSlot()
{
    static ModalBoxHook hook;
    return hook;
}

// A box can be shown only by a widget application, on its own thread, on a display
// that someone can see and answer.
bool canShowRealBox()
{
    auto* app = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!app || QThread::currentThread() != app->thread()) {
        return false;
    }
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}
} // namespace

void SetModalBoxHook(ModalBoxHook hook)
{
    std::lock_guard<std::mutex> lock(hookMutex);
    hookSlot() = std::move(hook);
}

void ShowModalBox(ModalBoxKind kind, const QString& caption, const QString& text)
{
    ModalBoxHook hook;
    {
        std::lock_guard<std::mutex> lock(hookMutex);
        hook = hookSlot();
    }
    if (hook) {
        hook(kind, caption, text);
        return;
    }
    if (canShowRealBox()) {
        if (kind == ModalBoxKind::Warning) {
            QMessageBox::warning(nullptr, caption, text);
        } else {
            QMessageBox::information(nullptr, caption, text);
        }
        return;
    }
    std::fprintf(stderr, "[%s] %s: %s\n", kind == ModalBoxKind::Warning ? "warning" : "information",
                 caption.toLocal8Bit().constData(), text.toLocal8Bit().constData());
}
