#pragma once
// Progress of the study's steps on standard error, for steps that take longer than a
// second: a line each second while such a step runs, saying which step of how many, how
// far it is where the step knows (rows, iterations) or else the last thing the library
// said, and the time so far; and a closing line with the step's time. Steps that end
// within a second print nothing. A small thread of its own writes the lines, since the
// library's calls give no control back while they run.

#include <QString>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace demo {

class Progress
{
public:
    // `out` null: silent (the program's quiet mode).
    Progress(std::FILE* out, int steps);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void begin(const QString& step);
    // How far the running step is: `done` of `total` `unit` ("rows", "buses").
    void advance(long long done, long long total, const char* unit);
    // What the running step last said, shown while no count is known.
    void note(const QString& text);
    void end();

private:
    using Clock = std::chrono::steady_clock;
    void run();
    QString line(long long seconds) const; // under the lock

    std::FILE* m_out;
    int m_steps;
    int m_step = 0;
    bool m_running = false, m_quit = false;
    QString m_name, m_howFar;
    Clock::time_point m_start;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::thread m_thread;
};

} // namespace demo
