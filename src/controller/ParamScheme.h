#pragma once

#include <atomic>

/// What a ParamScheme holds at a moment.
struct SchemeSpan {
    int flag = 0;
    int start = 0;
    int end = 0;
};

/// The daily span of a parameter scheme and whether it takes part in the choice by the clock. Any thread may call it.
class ParamScheme {
public:
    /// Times are hour * 100 + minute; the end is included.
    void setStartTime(int time) { m_nStartTime = time; }
    void getStartTime(int& time) const { time = m_nStartTime; }
    void setEndTime(int time) { m_nEndTime = time; }
    void getEndTime(int& time) const { time = m_nEndTime; }
    /// Non-zero: the scheme takes part.
    void setEnableFlag(int flag) { m_nEnableFlag = flag; }
    void getEnableFlag(int& flag) const { flag = m_nEnableFlag; }

    SchemeSpan getSpan() const { return {m_nEnableFlag, m_nStartTime, m_nEndTime}; }
    void setSpan(const SchemeSpan& span) {
        m_nEnableFlag = span.flag;
        m_nStartTime = span.start;
        m_nEndTime = span.end;
    }

private:
    std::atomic<int> m_nStartTime{0};
    std::atomic<int> m_nEndTime{0};
    std::atomic<int> m_nEnableFlag{0};
};
