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

// What was shown since the last clear(), in order; any thread may record.
template <class T> class Shown
{
public:
    void clear()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_items.clear();
    }
    void record(T item)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_items.push_back(std::move(item));
    }

protected:
    std::vector<T> items() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_items;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<T> m_items;
};

// Everything shown through WinDockFeedback::ShowMessage.
class FeedbackRecorder : public Shown<Message>
{
public:
    static FeedbackRecorder& instance();
    std::vector<Message> messages() const { return items(); }
    // Messages of one level, texts only, in order.
    std::vector<std::string> texts(int level) const;
    // True when this exact text was shown at this level.
    bool has(const std::string& text, int level) const;
    void record(const char* text, int level) { Shown::record({text ? text : "", level}); }
};

class BoxRecorder : public Shown<Box>
{
public:
    static BoxRecorder& instance();
    std::vector<Box> boxes() const { return items(); }
};

// Installs both recorders as the library's sink and hook, and clears them.
void InstallRecorders();

} // namespace testsupport
