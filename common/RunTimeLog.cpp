#include "common/RunTimeLog.h"

#include "common/Feedback.h"

#include <chrono>

QByteArray FormatRunTimeLine(const char* name, std::int64_t elapsedMs)
{
    const double seconds = double(elapsedMs) / 1000.0;
    const double minutes = seconds / 60.0;
    return FormatText("函数%s运行时间为：%.2f秒 ＝＝ %.2f分......", name, seconds, minutes);
}

std::int64_t RunTimeClockMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

void ShowRunTimeLine(const char* name, std::int64_t elapsedMs)
{
    ShowMessage(FormatRunTimeLine(name, elapsedMs), MSG_RAW);
}
