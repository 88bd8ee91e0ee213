#pragma once

#include "support/OpenController.h"
#include "support/PlainBench.h"
#include "support/ScriptedPort.h"

#include <initializer_list>
#include <string>

inline std::string hex(const std::string& text) { return toHex(text.data(), static_cast<int>(text.size())); }

/// The calls of a text that goes out whole, with its reply: ":W1F" and "4/5" (characters/timeout).
inline std::string exchanged(const std::string& text, const std::string& reply) {
    return ", send " + hex(text) + ", recv " + reply;
}

inline std::string thrice(const std::string& text, const std::string& reply) {
    const std::string one = exchanged(text, reply) + ", drain";
    return one + one + one;
}

/// A block that answers by script; nothing runs but what the test calls.
template <class Controller>
class RegisterTextBench : public PlainBench {
protected:
    RegisterTextBench() {
        m_pBlock->setOperator(m_pScript, m_pGpio);
        m_pBlock->setObserver(&m_Log);
    }

    /// A call with these replies: its result and the calls on the port.
    template <class Call>
    std::string run(Call&& call, std::initializer_list<const char*> replies = {}) {
        m_pScript->m_Replies.clear();
        for (const char* reply : replies)
            m_pScript->m_Replies.push_back(hex(reply));
        m_Log.take();
        const double before = m_pClock->now();
        std::string text = std::to_string(call());
        m_dSeconds = m_pClock->now() - before;
        for (const std::string& made : m_pScript->takeCalls())
            text += ", " + made;
        return text;
    }

    LogKeeper m_Log; // outlives the controller
    SafePointer<ScriptedPort> m_pScript{new ScriptedPort};
    SafePointer<Controller> m_pBlock{new Controller};
    double m_dSeconds = 0; ///< of the last run
};
