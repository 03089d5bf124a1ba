#pragma once
// The feedback and return-code convention shared by every transfer.
//
// Transfers return 0 for success and 1 for failure; checks return a boolean and
// lookups a neutral value. Messages go through WinDockFeedback::ShowMessage with
// one of the levels below, composed printf-style like the statements themselves.

#include <QByteArray>

// Return codes of transfer operations.
constexpr int CALC_OK = 0;
constexpr int CALC_FAIL = 1;

// Message levels of the suite's message window.
enum MessageLevel : int {
    MSG_RAW = -1,       // no level: run-time lines and raw SQL echoed ahead of an error
    MSG_PROGRESS = 1,   // progress and counts
    MSG_ERROR = 2,      // errors, and warnings that do not stop a transfer
    MSG_GROUP_FAIL = 3, // a data group could not be created in a save-back
};

// printf-style composition into text, the way transfers fill their local buffers.
// There is no length limit: the text grows to what the format needs.
QByteArray FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Shows `text` at `level` through WinDockFeedback::ShowMessage, with the three empty
// middle arguments that this library always passes.
void ShowMessage(const QByteArray& text, int level);

// Composes the message printf-style and shows it at `level`.
void ShowMessagef(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));
