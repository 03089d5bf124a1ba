#include "platform/WinDockFeedback.h"

#include <cstdio>
#include <mutex>

namespace {
std::mutex sinkMutex;
WinDockFeedback::Sink& sinkSlot()
{
    static WinDockFeedback::Sink sink;
    return sink;
}
} // namespace

bool WinDockFeedback::ShowMessage(const char* text, const char*, const char*, const char*,
                                  int level)
{
    Sink sink;
    {
        std::lock_guard<std::mutex> lock(sinkMutex);
        sink = sinkSlot();
    }
    const char* shown = text ? text : "";
    if (sink) {
        sink(shown, level);
    } else {
        std::fprintf(stderr, "[%d] %s\n", level, shown);
    }
    return true;
}

void WinDockFeedback::SetSink(Sink sink)
{
    std::lock_guard<std::mutex> lock(sinkMutex);
    sinkSlot() = std::move(sink);
}
