#pragma once
// Stand-in for the suite's closed Feedback library: the one channel through which
// every transfer reports to the suite's message window.
//
// The host installs a sink that receives each message with its level; without one,
// each message becomes one line on standard error. A real Feedback library keeps the
// same static signature and can replace this file.

#include <functional>

class WinDockFeedback
{
public:
    // Shows or records `text` with `level`. The second to fourth arguments are
    // always empty in this library. Never blocks the caller; callable at any time,
    // from any thread. The result is read by no caller.
    static bool ShowMessage(const char* text, const char* source, const char* object,
                            const char* extra, int level);

    using Sink = std::function<void(const char* text, int level)>;
    // Installs the host's sink; an empty sink restores the default (standard error).
    static void SetSink(Sink sink);
};
