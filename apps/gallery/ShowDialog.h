#pragma once
// Showing the library's dialogs outside a module: a step that runs once a modal dialog is
// on the screen (inside its exec()), and a picture of a widget as it stands. The gallery
// takes its screenshots so, and the dialog tests drive the dialogs so.

#include <QString>
#include <functional>

class QDialog;
class QWidget;

namespace gallery {

// Waits (running the event loop) until `widget`'s window is exposed, at most `ms`.
bool WaitExposed(QWidget* widget, int ms = 5000);

// Queues `step` to run once `dialog` shows (inside its exec()), then closes the dialog if
// `step` left it open, so that nothing waits for a user. When the window never becomes
// exposed, `notShown` runs instead of `step`. Call it right before the call that runs
// exec().
void WhenShown(QDialog* dialog, std::function<void()> step,
               std::function<void()> notShown = {});

// Saves widget->grab() as a PNG file at `path`, making its folder; false on failure.
bool SaveScreenshot(QWidget* widget, const QString& path);

} // namespace gallery
