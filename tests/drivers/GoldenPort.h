#pragma once

#include "host/IUARTController.h"

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// A port on which every frame is answered as a healthy block of its family answers it, unless the test wrote another
/// answer down. Notes the frames that the test's own thread sends; those of other threads are answered all the same.
class GoldenPort final : public IUARTController {
public:
    static constexpr const char* SecondDevice = "second";

    int open(const char* deviceName) override { return deviceName == std::string(SecondDevice) ? SecondHandle : 3; }
    int close(int) override { return 1; }
    int setParameter(int, int, int, int, int) override { return 1; }

    int send(int handle, const char* bytes, int length) override {
        const std::string frame(bytes, static_cast<std::size_t>(length));
        const std::lock_guard lock(m_Mutex);
        if (std::this_thread::get_id() == m_Owner)
            m_Sent.push_back((handle == SecondHandle ? "RS485:" : "") + written(frame));
        const auto answer = m_Answers.find(frame);
        m_Pending[std::this_thread::get_id()] = m_bSilent                   ? std::string()
                                                : answer != m_Answers.end() ? answer->second
                                                                            : healthyAnswer(frame);
        return length;
    }

    int recv(int, char* buffer, int length, int) override {
        const std::lock_guard lock(m_Mutex);
        std::string& pending = m_Pending[std::this_thread::get_id()];
        const std::size_t count = pending.copy(buffer, static_cast<std::size_t>(length));
        pending.erase(0, count);
        return static_cast<int>(count);
    }

    /// From now on this frame is answered so.
    void answer(const std::string& frame, const std::string& reply) {
        const std::lock_guard lock(m_Mutex);
        m_Answers[frame] = reply;
    }

    void setSilent(bool isSilent) {
        const std::lock_guard lock(m_Mutex);
        m_bSilent = isSilent;
    }

    /// The frames since the last call, joined by " | ".
    std::string takeSent() {
        const std::lock_guard lock(m_Mutex);
        std::string all;
        for (const std::string& frame : std::exchange(m_Sent, {}))
            all += (all.empty() ? "" : " | ") + frame;
        return all;
    }

    /// A frame as the golden texts have it: text in quotes, or bytes.
    static std::string written(const std::string& frame) {
        if (!frame.empty() && frame[0] == ':')
            return '"' + frame + '"';
        static constexpr const char* Digits = "0123456789ABCDEF";
        std::string text;
        for (const char byte : frame) {
            const auto value = static_cast<unsigned char>(byte);
            text += text.empty() ? "" : " ";
            text += {Digits[value >> 4], Digits[value & 0x0f]};
        }
        return text;
    }

private:
    static constexpr int SecondHandle = 4;

    static std::string healthyAnswer(const std::string& frame) {
        const auto byte = [&frame](std::size_t index) {
            return index < frame.size() ? static_cast<unsigned char>(frame[index]) : 0U;
        };
        if (frame == ":rE1ED0000")
            return {};
        if (byte(0) == ':' || byte(0) == 0xa1)
            return frame;
        if (byte(0) == 0x81 || byte(0) == 0xfe)
            return byte(1) == 0x09 ? std::string("\x90\x50\0\0\0\0\xff", 7) : "\x90\x41\xff";
        if (byte(0) == frame.size() && frame.size() >= 8) {
            // The length, three bytes that nobody looks at, the data of a read, the sum.
            const std::size_t data = byte(3) == 0x01 ? byte(6) : 0;
            std::string reply{static_cast<char>(5 + data), 0x01, static_cast<char>(2 + data), 0x01};
            reply.append(data, '\0');
            unsigned int sum = 0;
            for (const char one : reply)
                sum += static_cast<unsigned char>(one);
            return reply + static_cast<char>(sum & 0xff);
        }
        return {};
    }

    std::mutex m_Mutex;
    const std::thread::id m_Owner = std::this_thread::get_id();
    bool m_bSilent = false;
    std::vector<std::string> m_Sent;
    std::map<std::string, std::string> m_Answers;
    std::map<std::thread::id, std::string> m_Pending;
};
