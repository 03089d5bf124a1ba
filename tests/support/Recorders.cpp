#include "Recorders.h"

#include "common/ModalBox.h"
#include "platform/WinDockFeedback.h"

#include <algorithm>

namespace testsupport {

FeedbackRecorder& FeedbackRecorder::instance()
{
    static FeedbackRecorder r;
    return r;
}

std::vector<std::string> FeedbackRecorder::texts(int level) const
{
    std::vector<std::string> out;
    for (const Message& m : messages()) {
        if (m.level == level) {
            out.push_back(m.text);
        }
    }
    return out;
}

bool FeedbackRecorder::has(const std::string& text, int level) const
{
    const std::vector<std::string> shown = texts(level);
    return std::find(shown.begin(), shown.end(), text) != shown.end();
}

BoxRecorder& BoxRecorder::instance()
{
    static BoxRecorder r;
    return r;
}

void InstallRecorders()
{
    FeedbackRecorder::instance().clear();
    BoxRecorder::instance().clear();
    WinDockFeedback::SetSink(
        [](const char* text, int level) { FeedbackRecorder::instance().record(text, level); });
    SetModalBoxHook([](ModalBoxKind kind, const QString& caption, const QString& text) {
        BoxRecorder::instance().record({kind == ModalBoxKind::Warning, caption, text});
    });
}

} // namespace testsupport
