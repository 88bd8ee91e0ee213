#pragma once

#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "support/OpenController.h"
#include "support/ScriptedPort.h"
#include "support/TempRoot.h"

#include <memory>

#include <gtest/gtest.h>

/// A controller of a class on a port that answers by script, without its background thread.
template <class Block>
class ScriptedBlock : public ::testing::Test {
protected:
    ScriptedBlock() {
        sensorhost::installClock(m_pClock);
        m_pBlock = SafePointer<Block>(new Block);
        m_pBlock->setOperator(m_pPort, SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        m_pBlock->setObserver(&m_Log);
    }
    ~ScriptedBlock() override {
        m_pBlock = SafePointer<Block>();
        sensorhost::installClock(nullptr);
    }

    /// Makes a call with these replies, and keeps what it did.
    template <class Call>
    int run(std::deque<std::string> replies, Call call) {
        m_pPort->m_Replies = std::move(replies);
        m_pPort->takeCalls();
        m_Log.take();
        const double begin = m_pClock->now();
        const int result = call(*m_pBlock);
        m_nSeconds = m_pClock->now() - begin;
        m_strLog = m_Log.take();
        m_Calls = m_pPort->takeCalls();
        m_pPort->m_Replies.clear();
        return result;
    }
    int start(std::deque<std::string> replies, const std::string& detail = "RS485=a;isInfrared=0") {
        return run(std::move(replies), [&detail](Block& block) {
            return block.initController(0, ModuleConfigure(block.getSensorType(), detail, "RS485=9600,8,1,0"));
        });
    }
    int video(int system, std::deque<std::string> replies,
              const VideoResolution& resolution = VideoResolution(1920, 1080)) {
        return run(std::move(replies), [&](Block& block) { return block.setSensorVideoSystem(system, resolution); });
    }

    TempRoot m_Root;
    LogKeeper m_Log;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>();
    SafePointer<ScriptedPort> m_pPort{new ScriptedPort};
    SafePointer<Block> m_pBlock;
    std::vector<std::string> m_Calls;
    std::string m_strLog;
    double m_nSeconds = 0;
};
