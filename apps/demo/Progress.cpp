#include "Progress.h"

namespace demo {

Progress::Progress(std::FILE* out, int steps) : m_out(out), m_steps(steps)
{
    if (m_out) {
        m_thread = std::thread([this] { run(); });
    }
}

Progress::~Progress()
{
    if (m_thread.joinable()) {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_quit = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }
}

void Progress::begin(const QString& step)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_step;
    m_name = step;
    m_howFar.clear();
    m_start = Clock::now();
    m_running = true;
    m_wake.notify_all();
}

void Progress::advance(long long done, long long total, const char* unit)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_howFar = total > 0 ? QStringLiteral("%1 of %2 %3 (%4 %)")
                               .arg(done)
                               .arg(total)
                               .arg(QLatin1String(unit))
                               .arg(100 * done / total)
                         : QStringLiteral("%1 %2").arg(done).arg(QLatin1String(unit));
}

void Progress::note(const QString& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_running) {
        m_howFar = text;
    }
}

void Progress::end()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    if (m_out && seconds > 1.0) {
        std::fprintf(m_out, "  [%d/%d] %s: done in %.1f s\n", m_step, m_steps,
                     qPrintable(m_name), seconds);
    }
    m_running = false;
}

QString Progress::line(long long seconds) const
{
    return QStringLiteral("  [%1/%2] %3: %4%5 s")
        .arg(m_step)
        .arg(m_steps)
        .arg(m_name, m_howFar.isEmpty() ? QString() : m_howFar + QStringLiteral(", "))
        .arg(seconds);
}

void Progress::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    long long printed = 0; // whole seconds of the running step already told
    int step = 0;
    while (!m_quit) {
        if (!m_running) {
            m_wake.wait(lock);
            continue;
        }
        if (step != m_step) {
            step = m_step;
            printed = 0;
        }
        // A line each whole second, counted from the start of the running step.
        const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
        if (static_cast<long long>(seconds) > printed) {
            printed = static_cast<long long>(seconds);
            std::fprintf(m_out, "%s\n", qPrintable(line(printed)));
            std::fflush(m_out);
        }
        m_wake.wait_until(lock, m_start + std::chrono::seconds(printed + 1));
    }
}

} // namespace demo
