// How a controller is built, brought up and taken down, and the small services that drivers share.

#include "controller/DevicePaths.h"
#include "controller/HourMinute.h"
#include "controller/ISensorController.h"
#include "host/BRFile.h"
#include "host/ImagingLibraries.h"
#include "host/ModuleConfigure.h"
#include "host/SystemHelper.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string_view>

namespace {

using namespace sensorcontrol;

constexpr unsigned int LogSize = 10240;
constexpr unsigned int LogCount = 3;
constexpr int LogLineSize = 100;
constexpr int DebugLineSize = 50;
constexpr int ShellTimeLimit = 30; // seconds

/// Sensor type of the module whose parameters nobody may touch: it never counts as initialised.
constexpr int TypeWithoutParameters = 17;

/// Stops the camera block's pan/tilt menu; sent without a terminator.
constexpr std::string_view StopMenuCommand = "MENUON";

constexpr int DrainChunk = 20;
/// More chunks than a terminal can hold back: what still comes then is a line that never falls silent.
constexpr int MostDrainChunks = 256;

void runShell(const std::string& command) { sy_system(command.c_str(), ShellTimeLimit); }

} // namespace

ISensorController::ISensorController(int sensorType)
    : m_pIdManager(std::make_unique<IdManager>()), m_pCurrentCache(std::make_unique<SensorCache>()),
      m_pLastCache(std::make_unique<SensorCache>()), m_pRecvBuffer(std::make_unique<char[]>(ReceiveBufferSize)),
      m_nSensorType(sensorType), m_pErrorLog(new SensorLog), m_pInitLog(new SensorLog),
      m_pFactoryConfigFile(std::make_unique<SensorConfigFile>(paths::FactoryFile)),
      m_pEspecialConfigFile(std::make_unique<SensorConfigFile>(paths::EspecialFile)), m_pISPParam(createTuningTable()),
      m_pEE(createEdgeEnhancement()) {
    m_pIdManager->addParameterId(IdManager::Common, 500, 504);

    BRFile marker;
    if (marker.open(paths::DebugMarker, BRFile::Read)) {
        std::puts("*********In sensor debug mode (/factory_setting/SensorControlDebug)*********");
        m_nDebugMode = 1;
    }

    m_DNChangeThread = std::make_unique<GThread>(bind(this, &ISensorController::DNChangeThreadBody),
                                                 "DayNightChangeThread", GThread::emptyFun, GThread::emptyFun);
}

ISensorController::~ISensorController() {
    stopDNChangeThread();
    if (brewfi_exit())
        ErrorPrintf("brewfi_exit Failed!");
}

void ISensorController::stopDNChangeThread() {
    if (m_DNChangeThread)
        m_DNChangeThread->stop();
    m_DNChangeThread.reset();
}

void ISensorController::setOperator(const SafePointer<IUARTController>& uart, const SafePointer<IGPIO>& gpio) {
    m_pUARTController = uart;
    m_pGPIO = gpio;
}

int ISensorController::init(int videoSystem, const ModuleConfigure& configure, const VideoResolution& resolution) {
    if (DRV_init()) {
        ErrorPrintf("DRV_init Failed!");
        return 0;
    }
    if (ALG_sysInit()) {
        ErrorPrintf("ALG_sysInit Failed!");
        DRV_exit();
        return 0;
    }
    if (brewfi_init()) {
        ErrorPrintf("brewfi_init Failed!");
        return 0;
    }
    if (!m_pErrorLog->init(paths::ErrorLog, LogSize, LogCount))
        std::printf("%s can not be written, errors go to the console only\n", paths::ErrorLog);
    if (!m_pInitLog->init(paths::InitLog, LogSize, LogCount))
        std::printf("%s can not be written, start-up goes to the console only\n", paths::InitLog);

    ISPParamThreadInit();
    if (!initController(videoSystem, configure)) {
        ErrorPrintf("initController failed");
        return 0;
    }

    // From here on nothing fails the start: the camera comes up with what it has.
    if (m_nInfrared == 2)
        m_nInfrared = 1;
    if (m_nSensorType != TypeWithoutParameters)
        m_SensorStatus = InitSuccess;
    if (!stopPTZ())
        InitPrintf("stop PTZ @ISensorController::init failed");
    if (!setSensorVideoSystem(videoSystem, resolution))
        InitPrintf("init setSensorVideoSystem failed");
    enterDayMode();
    checkSensorConfigVersion();
    m_BaseSensorStatus = InitSuccess;
    initParamSchemeList();
    if (!initConfigFile())
        InitPrintf("initConfigFile failed");

    // The values are the clock's, the choice stays as it was saved: in automatic mode the first pass of the thread
    // corrects it. So the span of the choice stays too, or the next flush would write another one's into its file.
    int scheme = 0;
    std::string text;
    readCurrentParam(scheme, text);
    if (scheme != m_nParamScheme) {
        if (scheme < 0)
            InitPrintf("parameter scheme %d is chosen, no span is open: factory values", m_nParamScheme.load());
        else if (m_nParamMode == 0)
            InitPrintf("parameter scheme %d is chosen, the clock applies %d", m_nParamScheme.load(), scheme);
        keepSpanInForce(scheme, text);
    }
    if (!setParameters(text))
        InitPrintf("setParameters failed");
    if (!NotifySensorInitComplate())
        InitPrintf("NotifySensorInitComplate failed");
    if (!m_DNChangeThread->start())
        InitPrintf("m_DNChangeThread->start() failed");
    m_bisInited = true;
    ErrorPrintf("ISensorController::initSensor  success\n");
    return 1;
}

void ISensorController::setSensorConfigVersion(int version) {
    m_nSensorConfigVersion = version;
    for (const auto& file : m_ConfigFiles)
        file->setVersion(version);
    m_pFactoryConfigFile->setVersion(version);
    m_pEspecialConfigFile->setVersion(version);
}

void ISensorController::setSensorConfigVersion2(int version) {
    m_nSensorConfigVersion2 = version;
    for (const auto& file : m_ConfigFiles)
        file->setVersion2(version);
    m_pFactoryConfigFile->setVersion2(version);
    m_pEspecialConfigFile->setVersion2(version);
}

int ISensorController::checkSensorConfigVersion() {
    const std::string removeFactoryFile = std::string("rm ") + paths::FactoryFile;
    if (!m_pFactoryConfigFile->isVersionEqual(m_nSensorConfigVersion)) {
        std::puts("sensor configure version 1 changed delete configure files ");
        runShell(removeFactoryFile);
        runShell(std::string("rm ") + paths::OldParameterFile);
    } else if (!m_pFactoryConfigFile->isVersion2Equal(m_nSensorConfigVersion2)) {
        std::puts("sensor configure version 2 changed delete configure files ");
        runShell(removeFactoryFile);
    }
    return 1;
}

int ISensorController::initConfigFile() {
    if (hasSchemeChoice())
        readSchemeChoice();
    else
        createSensorXML();

    std::string all;
    if (!m_pFactoryConfigFile->isExist()) {
        if (!initFactorySetting()) {
            ErrorPrintf("initFactorySetting failed");
            return 0;
        }
        if (!getAllParametersFromSensor(all)) {
            ErrorPrintf("1getParametersFromSensor() failed");
            return 0;
        }
        if (m_pFactoryConfigFile->saveParametersToFile(all))
            std::printf("create(%s) success\n", paths::FactoryFile);
        else
            InitPrintf("create(%s) failed", paths::FactoryFile);
    } else {
        if (!getAllParametersFromSensor(all)) {
            ErrorPrintf("2getParametersFromSensor() failed");
            return 0;
        }
        alignFile(*m_pFactoryConfigFile, all);
    }
    return initSchemeFiles(all);
}

int ISensorController::initSchemeFiles(const std::string& all) {
    if (m_ConfigFiles.empty())
        return 0;

    SensorConfigFile& first = *m_ConfigFiles.front();
    if (first.isExist()) {
        std::puts("sensor1.cfg has exit");
        alignFile(first, all);
    } else {
        std::puts("sensor1.cfg has not exit");
        if (BRFile::isExist(paths::OldParameterFile)) {
            std::printf("%s exit\n", paths::OldParameterFile);
            const std::string command = std::string("mv ") + paths::OldParameterFile + " " + first.getFilePath();
            runShell(command);
            std::puts(command.c_str());
            std::printf("strAllParameters=%s\n", all.c_str());
            alignFile(first, all);
        } else {
            std::printf("%s not exit\n", paths::OldParameterFile);
            copyFactoryFile(first.getFilePath());
        }
    }

    for (std::size_t i = 1; i < m_ConfigFiles.size(); ++i) {
        SensorConfigFile& file = *m_ConfigFiles[i];
        std::map<int, int> stored;
        const bool isEmpty = file.readParametersFromFile(stored) && stored.empty();
        if (!file.isExist() || isEmpty)
            createDisabledScheme(file);
        alignFile(file, all);
    }
    loadSchemes();
    return 1;
}

void ISensorController::alignFile(SensorConfigFile& file, const std::string& all) {
    if (!file.modifyIdUnEqualParameters(all))
        InitPrintf("%s is unreadable, broken or read-only", file.getFilePath().c_str());
}

void ISensorController::copyFactoryFile(const std::string& path) {
    const std::string command = std::string("cp ") + paths::FactoryFile + " " + path;
    runShell(command);
    std::puts(command.c_str());
}

void ISensorController::createDisabledScheme(const SensorConfigFile& file) {
    // A power cut between the copy and its change must not leave a scheme that takes part: the file gets its name last.
    SensorConfigFile draft(file.getFilePath() + ".new");
    copyFactoryFile(draft.getFilePath());
    if (!draft.modifyParameter(500, 0)) {
        InitPrintf("%s can not be made", file.getFilePath().c_str());
        return;
    }
    runShell("mv " + draft.getFilePath() + " " + file.getFilePath());
}

void ISensorController::loadSchemes() {
    for (std::size_t i = 0; i < m_ConfigFiles.size(); ++i) {
        std::map<int, int> stored;
        m_ConfigFiles[i]->readParametersFromFile(stored);
        const int scheme = static_cast<int>(i);
        setParamSchemeStartTime(scheme, hourMinute(stored[501], stored[502] * 10LL));
        setParamSchemeEndTime(scheme, hourMinute(stored[503], stored[504] * 10LL));
        setParamSchemeEnableFlag(scheme, stored[500]);
    }
}

int ISensorController::stopPTZ() {
    if (!m_bisZoomModule)
        return 1;
    const int length = static_cast<int>(StopMenuCommand.size());
    if (m_pUARTController->send(m_nUartHandle, StopMenuCommand.data(), length) == length)
        return 1;
    ErrorPrintf("stop PTZ @getAllParameters failed");
    return 0;
}

void ISensorController::clearUartBuffer() {
    std::puts("Clear UART buffer");
    char buffer[DrainChunk];
    for (int chunk = 0; chunk < MostDrainChunks; ++chunk)
        if (m_pUARTController->recv(m_nUartHandle, buffer, DrainChunk, 1) != DrainChunk)
            return;
}

void ISensorController::computeSum(char* frame, int length) {
    unsigned int sum = 0;
    for (int i = 1; i <= length - 3; ++i)
        sum += static_cast<unsigned char>(frame[i]);
    if (length >= 2)
        frame[length - 2] = static_cast<char>(sum & 0xff);
}

int ISensorController::checkUARTRecv(const char* expected, int expectedLength, const char* received,
                                     int receivedLength) {
    if (expectedLength < 1 || receivedLength < 1)
        return 0;
    const std::string_view haystack(received, static_cast<std::size_t>(receivedLength));
    const std::string_view needle(expected, static_cast<std::size_t>(expectedLength));
    return haystack.find(needle) != std::string_view::npos ? 1 : 0;
}

void ISensorController::recodeArray(const char* data, int length) {
    if (length < 1)
        return;
    char text[LogLineSize];
    int used = 0;
    for (int i = 0; i < length; ++i) {
        char item[sizeof(",0xff")];
        const int size =
            std::snprintf(item, sizeof item, i == 0 ? "0x%x" : ",0x%x", static_cast<unsigned char>(data[i]));
        if (used + size >= LogLineSize)
            break;
        std::copy_n(item, size + 1, text + used);
        used += size;
    }
    ErrorPrintf("%s", text);
}

void ISensorController::InitPrintf(const char* format, ...) {
    char text[LogLineSize];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    m_pInitLog->WriteSensorLog("SensorInit", text);
}

void ISensorController::ErrorPrintf(const char* format, ...) {
    char text[LogLineSize];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    m_pErrorLog->WriteSensorLog("SensorError", text);
}

void ISensorController::Debug_Printf(const char* format, ...) {
    if (m_nDebugMode != 1)
        return;
    char text[DebugLineSize];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    std::puts(text);
}
