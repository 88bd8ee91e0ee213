#pragma once

#include "host/BreltoTime.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "support/BareController.h"
#include "support/TempRoot.h"
#include "tools/sensorctl/BlockPort.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

/// A module without a wire: it notes what it is told, fails where the test says so, and knows ids of every kind:
/// 1 to 3 common, 10 especial, 20 set-only, 30 keep-default; any other id is served but not registered.
class PlainController : public BareController {
public:
    explicit PlainController(int sensorType = 99) : BareController(sensorType) {
        m_pIdManager->addParameterId(IdManager::Common, 1, 3);
        m_pIdManager->addParameterId(IdManager::Especial, 10);
        m_pIdManager->addParameterId(IdManager::SetOnly, 20);
        m_pIdManager->addParameterId(IdManager::KeepDefault, 30);
        setSensorConfigVersion(4);
        setSensorConfigVersion2(2);
    }
    ~PlainController() override { stopDNChangeThread(); }

    int initController(int, const ModuleConfigure&) override { return does("initController"); }
    int initFactorySetting() override { return does("initFactorySetting"); }
    int setSensorVideoSystem(int, const VideoResolution&) override { return does("setSensorVideoSystem"); }
    int NotifySensorInitComplate() override { return does("NotifySensorInitComplate"); }
    int getParameterFromSensor(int id, int& value) override {
        if (m_SensorStatus != 2 || m_FailingIds.contains(id))
            return 0;
        if (ISensorController::getParameterFromSensor(id, value))
            return 1;
        value = m_Factory.at(id);
        return 1;
    }
    int setParameterToSensor(int id, int value) override {
        if (m_SensorStatus != 2)
            return 0;
        const int ofBase = ISensorController::setParameterToSensor(id, value);
        if (ofBase != -1)
            return ofBase;
        note("set " + std::to_string(id) + "=" + std::to_string(value));
        if (m_nSettingTime > 0)
            BreltoTime::wait(BreltoTime(0, m_nSettingTime));
        return m_FailingIds.contains(id) ? 0 : 1;
    }
    int UpdateParameters(std::string& parameters) override {
        if (m_nUpdatedId != 0)
            UpdateParametersIdValue(parameters, m_nUpdatedId, m_nUpdatedValue);
        return 1;
    }
    int setParameterValue(const char* command, int length) override { return does(toHex(command, length)); }
    int enterAutoMode() override { return does("enterAutoMode"); }
    int set2AParam(int status) override { return does("2A " + std::to_string(status)); }
    int getDNStatusFromSensor(int& status) override {
        if (m_nStatus == -1)
            return does("getDNStatusFromSensor");
        status = m_nStatus;
        return 1;
    }
    int turnPictureToDay() override { return does("picture day"); }
    int turnPictureToNight() override { return does("picture night"); }
    int turnToAutoDayNightMode() override { return does("auto"); }
    int turnToManualDayNightMode() override { return does("manual"); }
    int updateHDRMode(int mode) override { return does("HDR " + std::to_string(mode)); }

    /// What was called since the last call of this.
    std::vector<std::string> takeCalls() { return std::exchange(m_Calls, {}); }

    std::map<int, int> m_Factory{{1, 11}, {2, 12}, {3, 13}, {10, 110}, {30, 130}};
    std::set<int> m_FailingIds;
    std::set<std::string> m_FailingCalls;
    std::atomic<int> m_nStatus{1}; ///< day or night as the module reports it, -1: the base class's answer
    int m_nUpdatedId = 0;          ///< changed inside the module
    int m_nUpdatedValue = 0;
    int m_nSettingTime = 0; ///< microseconds that a setting takes
    bool m_bNotes = true;   ///< off where several threads call

    using ISensorController::m_BaseSensorStatus, ISensorController::m_bisInited, ISensorController::m_bisReset,
        ISensorController::m_bisZoomModule, ISensorController::m_bNewInfrared, ISensorController::m_nDayNightMode,
        ISensorController::m_nDNLevelGPIOLevel, ISensorController::m_nDNLevelGPIOPin,
        ISensorController::m_nFilterGPIOLevel, ISensorController::m_nFilterGPIOPin, ISensorController::m_nHDRMode,
        ISensorController::m_nInfrared, ISensorController::m_nInfraredGPIOLevel, ISensorController::m_nInfraredGPIOPin,
        ISensorController::m_nLastDayNightMode, ISensorController::m_nParamMode, ISensorController::m_nParamScheme,
        ISensorController::m_nParamSchemeEndTime, ISensorController::m_nParamSchemeStartTime,
        ISensorController::m_ParamSchemes, ISensorController::m_pIdManager, ISensorController::m_SensorStatus;

private:
    void note(const std::string& call) {
        if (m_bNotes)
            m_Calls.push_back(call);
    }
    int does(const std::string& call) {
        note(call);
        return m_FailingCalls.contains(call) ? 0 : 1;
    }

    std::vector<std::string> m_Calls;
};

/// A PlainController on a simulated clock with files and pins of its own.
class PlainBench : public ::testing::Test {
protected:
    PlainBench() {
        sensorhost::ImagingStandIn::getInstance().reset();
        sensorhost::installClock(m_pClock);
        m_Root.writeSchemeCount(2);
        create();
    }
    ~PlainBench() override {
        m_pController = SafePointer<PlainController>();
        sensorhost::installClock(nullptr);
        sensorhost::ImagingStandIn::getInstance().reset();
    }

    PlainController& create(int sensorType = 99) {
        m_pController = SafePointer<PlainController>();
        m_pController = SafePointer<PlainController>(new PlainController(sensorType));
        m_pController->setOperator(SafePointer<IUARTController>(), m_pGpio);
        return *m_pController;
    }
    int init() { return m_pController->init(1, ModuleConfigure(99, "", ""), VideoResolution(1920, 1080)); }
    PlainController& c() { return *m_pController; }
    std::string file(const std::string& name) const { return m_Root.read(Folder + name); }
    void writeFile(const std::string& name, const std::string& text) const { m_Root.write(Folder + name, text); }
    /// Whether one of the two logs has the text.
    bool hasLogged(const std::string& text) const {
        return (m_Root.read("/mnt/mtd/log/SensorError.log") + m_Root.read("/mnt/mtd/log/SensorInit.log")).find(text) !=
               std::string::npos;
    }
    std::string values(const std::string& ids) {
        std::string text = "<refused>";
        c().getParameters(ids, text);
        return text;
    }

    static constexpr const char* FolderName = "/mnt/mtd/code/config_file";
    static inline const std::string Folder = std::string(FolderName) + "/";
    static inline const std::string Span = "(500,1)(501,0)(502,0)(503,24)(504,0)";
    static inline const std::string FactoryText = "(1,11)(2,12)(3,13)(10,110)(30,130)" + Span;

    TempRoot m_Root;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>();
    SafePointer<sensorhost::MemoryGpio> m_pGpio{new sensorhost::MemoryGpio};
    SafePointer<PlainController> m_pController;
};
