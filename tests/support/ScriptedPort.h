#pragma once

#include "host/IUARTController.h"
#include "tools/sensorctl/BlockPort.h"

#include <algorithm>
#include <deque>
#include <string>
#include <utility>
#include <vector>

/// A port that answers what the test wrote down, and notes every call made on it: "send 81 09 04 01 FF", "recv 3/4"
/// (bytes/timeout), "drain" (20 bytes, timeout 1). For one thread at a time.
class ScriptedPort final : public IUARTController {
public:
    static constexpr const char* Dead = "dead"; ///< as a reply: the port gives -1

    int open(const char* deviceName) override {
        m_Calls.push_back(std::string("open ") + deviceName);
        return m_nOpenResult;
    }
    int close(int) override { return 1; }
    int setParameter(int, int baudRate, int dataBits, int parity, int stopBits) override {
        m_Calls.push_back("line " + std::to_string(baudRate) + " " + std::to_string(dataBits) + " " +
                          std::to_string(parity) + " " + std::to_string(stopBits));
        return m_nLineResult;
    }
    int send(int, const char* bytes, int length) override {
        m_Calls.push_back("send " + toHex(bytes, length));
        return take(m_SendResults, length);
    }
    int recv(int, char* buffer, int length, int timeout) override {
        if (length == 20 && timeout == 1) {
            m_Calls.emplace_back("drain");
            return take(m_DrainResults, 0);
        }
        m_Calls.push_back("recv " + std::to_string(length) + "/" + std::to_string(timeout));
        const std::string reply = take(m_Replies, std::string());
        if (reply == Dead)
            return -1;
        const int count = std::min(length, static_cast<int>((reply.size() + 1) / 3));
        for (int i = 0; i < count; ++i)
            buffer[i] = static_cast<char>(std::stoi(reply.substr(static_cast<std::size_t>(i) * 3, 2), nullptr, 16));
        return count;
    }

    /// The calls since the last time.
    std::vector<std::string> takeCalls() { return std::exchange(m_Calls, {}); }

    int m_nOpenResult = 3;
    int m_nLineResult = 1;
    std::deque<std::string> m_Replies; ///< hex texts, one a receive; then silence
    std::deque<int> m_SendResults;     ///< one a send; then everything goes out
    std::deque<int> m_DrainResults;    ///< one a drain; then nothing is there

private:
    template <class T>
    static T take(std::deque<T>& script, T otherwise) {
        if (script.empty())
            return otherwise;
        T first = std::move(script.front());
        script.pop_front();
        return first;
    }

    std::vector<std::string> m_Calls;
};
