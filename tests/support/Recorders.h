#pragma once
// Recorders that the test main installs for the library's two ways of telling the
// user something: the message window and the modal box. Tests assert on what they
// recorded (exact texts and levels), and no test ever blocks on a box.

#include <QString>
#include <mutex>
#include <string>
#include <vector>

namespace testsupport {

struct Message
{
    std::string text; // as the library composed it (local 8-bit, UTF-8 here)
    int level;
};

struct Box
{
    bool warning; // false: information
    QString caption;
    QString text;
};

// Everything shown through WinDockFeedback::ShowMessage since the last clear().
class FeedbackRecorder
{
public:
    static FeedbackRecorder& instance();
    void clear();
    std::vector<Message> messages() const;
    // Messages of one level, texts only, in order.
    std::vector<std::string> texts(int level) const;
    // True when this exact text was shown at this level.
    bool has(const std::string& text, int level) const;
    // Number of messages whose text contains `part`.
    int countContaining(const std::string& part) const;
    void record(const char* text, int level);

private:
    mutable std::mutex m_mutex;
    std::vector<Message> m_messages;
};

// Every modal box since the last clear().
class BoxRecorder
{
public:
    static BoxRecorder& instance();
    void clear();
    std::vector<Box> boxes() const;
    void record(Box box);

private:
    mutable std::mutex m_mutex;
    std::vector<Box> m_boxes;
};

// Installs both recorders as the library's sink and hook, and clears them.
void InstallRecorders();

} // namespace testsupport
