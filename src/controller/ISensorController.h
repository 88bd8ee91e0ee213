#pragma once

#include "controller/ParamScheme.h"
#include "controller/RecursiveMutex.h"
#include "controller/SensorLog.h"
#include "host/BRDeviceTime.h"
#include "host/BRMutex.h"
#include "host/Export.h"
#include "host/GThread.h"
#include "host/IGPIO.h"
#include "host/IUARTController.h"
#include "host/SafePointer.h"
#include "params/IdManager.h"
#include "params/SensorCache.h"
#include "params/SensorConfigFile.h"

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

class EE;
class ISPParam;
class ModuleConfigure;
class VideoResolution;

namespace sensorcontrol {
class ControllerObserver;
class DriverServices;
class ParameterTable;
} // namespace sensorcontrol

/// Controls one camera module. The base class carries the state and the logic that all modules share; a concrete
/// controller adds the module's transport and maps parameter ids to commands.
///
/// Operations give 1 for success and 0 for failure unless they say otherwise. Failures that matter go to the error
/// log and the console. After `init` any thread may call the operations below; those that talk to the module block
/// for the exchange with its retries, and wait for their turn on the port.
class SENSORCONTROL_API ISensorController {
public:
    enum SensorStatus { NotInited = 1, InitSuccess = 2 };

    /// `sensorType` is the module id that the controller stands for.
    explicit ISensorController(int sensorType);
    ISensorController(const ISensorController&) = delete;
    ISensorController& operator=(const ISensorController&) = delete;

    // The virtual operations stand in their binary order.

    /// Ends the background thread and frees everything. A concrete destructor calls stopDNChangeThread before its own
    /// members go, because the thread calls virtual operations.
    virtual ~ISensorController();

    /// Tells the device of a changed video system (0 NTSC, 1 PAL), to be in force after the next start.
    virtual int updateSensorVideoSystem(int videoSystem, const VideoResolution& resolution);
    /// Applies the factory values and saves them for every scheme; schemes but the first end up disabled.
    virtual int resetParameters();
    /// Applies the saved values of the scheme in force.
    virtual int resetToLastParameters();
    /// Saves the values in force to the file of the scheme in force. Until then a change does not outlive a restart.
    virtual int flush();
    virtual int getMirrorValue(int& value) = 0;
    /// Tells the exposure side the judged day/night status, on every pass. The result is not looked at.
    virtual int set2AParam(int dnStatus);
    virtual int getCameraVerInf(std::string& version);
    virtual int restoreAeMode();
    virtual int setRunAutoIris();
    virtual int IrisUp();
    virtual int IrisDown();
    virtual int FocusFar(int speed);
    virtual int FocusNear(int speed);
    virtual int ZoomIn(int speed);
    virtual int ZoomOut(int speed);
    virtual int getZoomValue(int& value, int& maximum);
    virtual int setZoomValue(int value);
    virtual int setFocusValue(int value);
    virtual int getFocusValue(int& value);
    virtual int setFocusMode(int mode);
    virtual int getFocusMode(int& mode);
    virtual int StopZoomContrl();
    virtual int StopFocusContrl();
    virtual int StopIris();
    virtual int setZoomAndFocusValue(int zoom, int focus);
    virtual int getDayNightState(int& state);
    virtual int getCameraFocusMode(int& mode);
    /// IR light power, 0 to 100. Without an infrared board it does nothing and gives 1.
    virtual int setNearLight(int power);
    /// The factory value, as with every getter of a parameter here; the value in force is getParameter's.
    virtual int getNearLight(int& power);
    virtual int setMiddleLight(int power);
    virtual int getMiddleLight(int& power);
    virtual int setFarLight(int power);
    virtual int getFarLight(int& power);
    virtual int getStillImageValue(int& value);
    /// Hands the day/night choice over to the module.
    virtual int enterAutoMode();
    /// IR power mode, 0 or 1.
    virtual int setPowerMode(int mode);
    virtual int getPowerMode(int& mode);
    /// The factory value of an id, or what the module reports.
    virtual int getParameterFromSensor(int id, int& value);
    /// Gives the module one value. -1 for an id that is not served.
    virtual int setParameterToSensor(int id, int value);
    virtual int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) = 0;
    virtual int NotifySensorInitComplate();
    /// Folds values that changed inside the module into a parameter string.
    virtual int UpdateParameters(std::string& parameters);
    /// One inquiry: sends the command, receives exactly `replyLength` bytes.
    virtual int getParameterValue(const char* command, int length, char* reply, int replyLength);
    /// One setting command with its acknowledgement.
    virtual int setParameterValue(const char* command, int length);
    /// 0 automatic, 1 day, 2 night, 3 by clock, 4 left to the module; an override maps its own values to these.
    virtual int setDayNightMode(int mode);
    virtual int getDayNightMode(int& mode);
    /// The module's own report: 1 day, 0 night. 0 as result on failure.
    virtual int getDNStatusFromSensor(int& status);
    /// The light-dependent resistor's report.
    virtual int getDNStatusFromLDR(int& status);
    virtual int turnPictureToDay();
    virtual int turnPictureToNight();
    virtual int turnToAutoDayNightMode();
    virtual int turnToManualDayNightMode();
    /// Moves lights and filter, lights first. Waits 100 ms in between.
    virtual int SwitchInfraredIrCutToDay();
    /// Moves filter and lights, filter first.
    virtual int SwitchInfraredIrCutToNight();
    /// Opens the port and reads the module keys.
    virtual int initController(int videoSystem, const ModuleConfigure& configure) = 0;
    /// Brings the module to its defaults before they are read into the factory file.
    virtual int initFactorySetting();
    virtual int getCurrentGain(int& gain);
    /// Periodic work of a controller, on every pass of the background thread.
    virtual void doDependOnThread();
    /// 1 on the way to day, 2 on the way to night.
    virtual int updateHDRMode(int mode);

    // Start and identity.

    /// Brings the module up: ports, video system, parameter files, stored parameters, background thread. Blocks for
    /// seconds, for more than twenty if the module must restart. 0 only if the platform or the module's port failed;
    /// anything later is logged and the module comes up with what it has. Called once.
    int init(int videoSystem, const ModuleConfigure& configure, const VideoResolution& resolution);
    /// Ends a start that is under way on another thread, the wait for a restarting module included: init gives 0 within
    /// one exchange with the module, saves nothing further, and the controller is only good for destruction. Any
    /// thread; 1 if a start was under way, else 0.
    int cancelStart();
    /// The port and pins to work with; before init.
    void setOperator(const SafePointer<IUARTController>& uart, const SafePointer<IGPIO>& gpio);
    /// Who hears what happens; before init, null for nobody. It outlives the controller.
    void setObserver(sensorcontrol::ControllerObserver* observer);
    int getSensorType() const { return m_nSensorType; }
    int getSensorStatus() const { return m_SensorStatus; }

    // Parameters.

    /// Applies a parameter string, ids ascending; values that the module already has cost nothing. 0 if an id failed:
    /// the others are applied all the same.
    int setParameters(const std::string& text);
    int setParameter(int id, int value);
    /// The values of some ids, "(1)(2)", as a parameter string; 0 if one of them has none.
    int getParameters(const std::string& ids, std::string& result);
    /// From the set asked for last, else from what the module holds.
    int getParameter(int id, int& value);
    /// Everything the module holds.
    int getAllParameters(std::string& result);
    /// Asks the module for the factory values of all ids.
    int getAllParametersFromSensor(std::string& result);
    /// Replaces the value of one id in a parameter string that has it.
    void UpdateParametersIdValue(std::string& text, int id, int value);

    // Schemes: sets of parameters with a daily span. Times are hour * 100 + minute, schemes count from 0.

    /// 0: the host chooses the scheme; otherwise the clock does.
    int setParamMode(int mode);
    int getParamMode(int& mode);
    int setParamScheme(int scheme);
    int getParamScheme(int& scheme);
    int setParamSchemeEnableFlag(int scheme, int flag);
    int setParamSchemeStartTime(int scheme, int time);
    int setParamSchemeEndTime(int scheme, int time);
    int setEnableParam(int flag);
    int getEnableParam(int& flag);
    int setParamStartTime_H(int hour);
    int setParamStartTime_M(int tensOfMinutes);
    int setParamEndTime_H(int hour);
    int setParamEndTime_M(int tensOfMinutes);
    int getParamStartTime_H(int& hour);
    int getParamStartTime_M(int& tensOfMinutes);
    int getParamEndTime_H(int& hour);
    int getParamEndTime_M(int& tensOfMinutes);
    /// Applies the values of a scheme, with its span to the one in force: hosts call setParamScheme.
    int switchParam(int scheme);
    /// The scheme that the clock selects and its parameters; without one the factory values, scheme -1 and result 0.
    int readCurrentParam(int& scheme, std::string& text);
    int readParamByScheme(int scheme, std::string& text);
    void reInitSchemeTimeMember();
    /// 0, or -1 if no span covers the clock or the switch failed.
    int paramSchemeSwitchBody();
    int initParamSchemeList();
    int getParamSchemeNum(int& count);
    int createSensorXML();
    int setParamSchemeToFile(int scheme);
    int setParamSchemeModeToFile(int mode);
    int getParamSchemeFromFile(int& scheme);
    int getParamSchemeModeFromFile(int& mode);
    int setValueToParamSchemeNode(const std::string& name, const std::string& value);
    int getValueFromParamSchemeNode(const std::string& name, std::string& value);

    // Day and night. Status: 1 day, 0 night, -1 none yet.

    /// Seconds of light before the automatic mode turns to day.
    int setDNSwitchDelay(int seconds);
    int getDNSwitchDelay(int& seconds);
    /// Day-to-night and night-to-day time, an hour or tens of minutes at a time. Refused if the two would be equal.
    int setDTNTime_H(int hour);
    int setDTNTime_M(int tensOfMinutes);
    int setNTDTime_H(int hour);
    int setNTDTime_M(int tensOfMinutes);
    int getDTNTime_H(int& hour);
    int getDTNTime_M(int& tensOfMinutes);
    int getNTDTime_H(int& hour);
    int getNTDTime_M(int& tensOfMinutes);
    /// One pass of the background thread; ends with its sleep. Always 0.
    int DNChangeThreadBody();
    int DNSwitchHandle();
    int DNSwitchJudge(int& status);
    int getCurrentDNStatus(int& status);
    int isTimeToSwitch(int status);
    int DNSwitchByTime(int& status);
    int reInitDelayStartTime();
    void getCurrentTime(double& seconds);

    // IR lights and filter.

    int enterDayMode();
    int enterNightMode();

    // For drivers.

    int initConfigFile();
    int checkSensorConfigVersion();
    void setSensorConfigVersion(int version);
    void setSensorConfigVersion2(int version);
    int stopPTZ();
    /// Throws away what the port holds. Blocks until it was silent for a tenth of a second.
    void clearUartBuffer();
    /// Puts the sum of the bytes behind the first into the last but one.
    void computeSum(char* frame, int length);
    /// 1 if the expected bytes occur in one piece in the received ones.
    int checkUARTRecv(const char* expected, int expectedLength, const char* received, int receivedLength);
    /// Bytes as text to the error log; what does not fit a line of it is cut.
    void recodeArray(const char* data, int length);
    void InitPrintf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void ErrorPrintf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void Debug_Printf(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Tuning of the on-chip pipeline.

    /// Loads the tuning file; without a readable one the table is empty and the result 0.
    int ISPParamThreadInit();
    /// One pass, with the sleep of 1 to 3600 seconds that paces the thread. Always 0.
    int ISPParamBody();
    /// Applies what the table has for a key and differs from what was applied last. Type "DN": key 1 day, 0 night; type
    /// "GAIN": key as getCurrentGain gives it. Always 1, as the three after it.
    int setISPParam(const std::string& type, int key);
    int set3DNRParam(const std::string& type, int key);
    int setDCParam(const std::string& type, int key);
    int setEEParam(const std::string& type, int key);
    /// Strength of the temporal noise filter, 1 to 100; 0 turns it off. Any thread, as the three after it. Always 1.
    int setTNF(int value);
    /// 1: the filter is off; 2: it has the strength set last; any other: the tuning table drives it.
    int setTNFMode(int mode);
    /// Factory values.
    int getTNF(int& value);
    int getTNFMode(int& mode);

protected:
    friend class sensorcontrol::DriverServices;
    friend class sensorcontrol::ParameterTable;

    /// Ends the background thread. Safe to repeat.
    void stopDNChangeThread();

    // Members in their binary order. Those that the background thread and host calls share are atomic.

    int m_nUartHandle = -1;
    BRMutex m_UartMutex; ///< one exchange on the port, retries included
    bool m_bisZoomModule = false;
    std::atomic<int> m_SensorStatus{NotInited};
    std::atomic<int> m_BaseSensorStatus{NotInited};
    std::atomic<int> m_nSensorConfigVersion{0};
    std::atomic<int> m_nSensorConfigVersion2{0};
    std::unique_ptr<IdManager> m_pIdManager;
    std::unique_ptr<SensorCache> m_pCurrentCache; ///< the set asked for last
    std::unique_ptr<SensorCache> m_pLastCache;    ///< what the module holds
    SafePointer<IUARTController> m_pUARTController;
    SafePointer<IGPIO> m_pGPIO;
    std::atomic<int> m_nDayNightMode{0};
    std::atomic<int> m_nLastDayNightMode{-1};
    std::atomic<int> m_nDNSwitchDelay{0};
    std::atomic<double> m_dDelayStartTime{0};
    std::atomic<int> m_nLastDNStatus{-1};
    std::unique_ptr<char[]> m_pRecvBuffer; ///< ReceiveBufferSize bytes, under the lock of the exchange
    bool m_bDNThreadSwitch = true;
    std::atomic<bool> m_bisInited{false};
    int m_nInfrared = 0;
    const int m_nSensorType;
    bool m_bNewInfrared = false;
    std::atomic<int> m_nDNState{-1};
    std::atomic<int> m_nISPDNState{-1};
    int m_nTNFEnable = 1;
    std::atomic<int> m_nTNFMode{1};
    std::atomic<int> m_nTNFValue{0};
    int m_nFilterGPIOGroup = 0;
    int m_nFilterGPIOPin = 0;
    int m_nFilterGPIOLevel = 0;
    int m_nInfraredGPIOGroup = 0;
    int m_nInfraredGPIOPin = 0;
    int m_nInfraredGPIOLevel = 0;
    int m_nDNLevelGPIOGroup = 0;
    int m_nDNLevelGPIOPin = 0;
    int m_nDNLevelGPIOLevel = 0;
    std::atomic<int> m_nDayNightValue{1};
    std::atomic<int> m_nInfraredMode{0};
    SafePointer<SensorLog> m_pErrorLog;
    SafePointer<SensorLog> m_pInitLog;
    std::atomic<int> m_nHDRMode{0};
    /// The caches, the span and the choice of scheme during an operation that has several steps. A setter of a driver
    /// must not call setParameters all the same: it would empty the set that is being walked.
    sensorcontrol::RecursiveMutex m_ParamMutex;
    int m_nDebugMode = 0;
    std::vector<std::unique_ptr<SensorConfigFile>> m_ConfigFiles;
    std::vector<std::unique_ptr<ParamScheme>> m_ParamSchemes;
    std::unique_ptr<SensorConfigFile> m_pFactoryConfigFile;
    std::unique_ptr<SensorConfigFile> m_pEspecialConfigFile;
    std::unique_ptr<GThread> m_DNChangeThread;
    std::unique_ptr<ISPParam> m_pISPParam;
    std::atomic<int> m_nLastA0{-100};
    std::atomic<int> m_nLastTM{-100};
    std::atomic<int> m_nLastDC{-100};
    std::atomic<int> m_nLastEE{-100};
    std::unique_ptr<EE> m_pEE;
    std::atomic<bool> m_bISPRealTimeUpdate{false};
    std::atomic<int> m_nISPDelayTime{1};
    std::atomic<int> m_nDTNTime{6677}; ///< no clock time: not set yet
    std::atomic<int> m_nNTDTime{8899};
    BRDeviceTime m_DeviceTime; ///< the clock as DNSwitchByTime read it last, under a lock of its own
    BRMutex m_DNMutex;         ///< the day/night decision
    std::atomic<bool> m_bisReset{false};
    std::atomic<int> m_nParamScheme{0};
    std::atomic<int> m_nParamMode{1};
    std::atomic<int> m_nParamSchemeStartTime{6600};
    std::atomic<int> m_nParamSchemeEndTime{8800};

    static constexpr int ReceiveBufferSize = 100;

private:
    struct Rooms;
    std::unique_ptr<Rooms> m_pRooms;
};
