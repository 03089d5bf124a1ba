#pragma once
// The one way in which the library puts a modal message box before the user.
//
// Some operations report by a box instead of the message window (a failed batch
// insert, a failed update of a job table, a failed breaker row). All of them call
// ShowModalBox. Where a host has installed a hook, the hook gets the box and nothing
// blocks (tests record, a headless host logs). Without a hook a real QMessageBox is
// shown when a widget application runs on a real display; otherwise the box becomes
// one line on standard error, so a headless caller is never held.

#include <QString>
#include <functional>

enum class ModalBoxKind { Information, Warning };

using ModalBoxHook =
    std::function<void(ModalBoxKind kind, const QString& caption, const QString& text)>;

// Installs the host's hook; an empty hook restores the default behaviour.
void SetModalBoxHook(ModalBoxHook hook);

// QMessageBox::information or ::warning with no parent and default buttons, or the
// hook, or a log line, as above. Returns when the box is dismissed.
void ShowModalBox(ModalBoxKind kind, const QString& caption, const QString& text);
