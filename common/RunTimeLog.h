#pragma once
// Run-time frame of the timed transfer functions.
//
// A timed function creates a CRunTimeLog named after itself as its first statement,
// so that every exit ends it. With the switch off (the build's setting) the frame
// costs nothing: no clock is read and no line is shown. Turning the one constant on
// makes every frame show "函数%s运行时间为：%.2f秒 ＝＝ %.2f分......" at level -1 when
// it ends.

#include <QByteArray>
#include <cstdint>

// The one switch for all timed functions of the library: off. A build that defines
// CALCDATA_RUN_TIME_LOG as 1 compiles the frames it builds with the switch on (a test
// program does so to see them).
#ifndef CALCDATA_RUN_TIME_LOG
#define CALCDATA_RUN_TIME_LOG 0
#endif
constexpr bool kRunTimeLogEnabled = CALCDATA_RUN_TIME_LOG != 0;

// The line a frame shows for a function that ran `elapsedMs` milliseconds.
QByteArray FormatRunTimeLine(const char* name, std::int64_t elapsedMs);

// Milliseconds of a monotonic wall clock: the time a user waits, server time included.
std::int64_t RunTimeClockMs();

// Shows a finished frame's line at level -1.
void ShowRunTimeLine(const char* name, std::int64_t elapsedMs);

template <bool Enabled> class CRunTimeLogT
{
public:
    explicit CRunTimeLogT(const char* name) : m_start(Enabled ? RunTimeClockMs() : 0), m_name(name)
    {}
    ~CRunTimeLogT()
    {
        if (Enabled) {
            ShowRunTimeLine(m_name, RunTimeClockMs() - m_start);
        }
    }
    CRunTimeLogT(const CRunTimeLogT&) = delete;
    CRunTimeLogT& operator=(const CRunTimeLogT&) = delete;

private:
    std::int64_t m_start; // clock at construction, when enabled
    const char* m_name;   // the function's name, a string literal: not owned, not copied
};

using CRunTimeLog = CRunTimeLogT<kRunTimeLogEnabled>;
