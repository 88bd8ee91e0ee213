#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/CmdController.h"
#include "drivers/visca/ConsolePrints.h"

#include <atomic>
#include <string>

/// The CMD8300 camera block, module 25. Its start script depends on the video system, and its two day/night
/// sensitivities keep a distance of 10.
class SENSORCONTROL_API CMD8300SenseController : public sensorcontrol::CmdController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {25};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    CMD8300SenseController();
    ~CMD8300SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// Puts the start script of the video system in place. Always 1.
    int updateSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
    int initFactorySetting() override;
    int UpdateParameters(std::string& parameters) override;
    int setParameterValue(const char* command, int length) override;
    /// 1 left to the block, 3 day, 4 night, 5 by clock.
    int setDayNightMode(int mode) override;
    void doDependOnThread() override;

    /// Does nothing and gives 0.
    int setGainValue();
    /// 5 to 116, at least 10 below the day-to-night one.
    int setNtoDSensitivity(int value);
    /// 15 to 126, at least 10 above the night-to-day one.
    int setDtoNSensitivity(int value);

    /// Opens the port of the module keys and sets its line.
    int openUART();
    void closeUART();

protected:
    // Written last with success.
    std::atomic<int> m_nNtoDSensitivity{5};
    std::atomic<int> m_nDtoNSensitivity{15};
    // From the module keys.
    std::string m_strDeviceName;
    std::string m_strPortParameter;
};

namespace CMD8300_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CMD8300_TOOL
