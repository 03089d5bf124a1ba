#include "Recorders.h"

#include "common/ModalBox.h"
#include "platform/WinDockFeedback.h"

namespace testsupport {

FeedbackRecorder& FeedbackRecorder::instance()
{
    static FeedbackRecorder r;
    return r;
}

void FeedbackRecorder::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_messages.clear();
}

std::vector<Message> FeedbackRecorder::messages() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_messages;
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
    for (const Message& m : messages()) {
        if (m.level == level && m.text == text) {
            return true;
        }
    }
    return false;
}

int FeedbackRecorder::countContaining(const std::string& part) const
{
    int n = 0;
    for (const Message& m : messages()) {
        n += m.text.find(part) != std::string::npos ? 1 : 0;
    }
    return n;
}

void FeedbackRecorder::record(const char* text, int level)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_messages.push_back({text ? text : "", level});
}

BoxRecorder& BoxRecorder::instance()
{
    static BoxRecorder r;
    return r;
}

void BoxRecorder::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_boxes.clear();
}

std::vector<Box> BoxRecorder::boxes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_boxes;
}

void BoxRecorder::record(Box box)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_boxes.push_back(std::move(box));
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
