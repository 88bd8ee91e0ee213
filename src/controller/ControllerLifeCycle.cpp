// How a controller is built, brought up and taken down, and the small services that drivers share.

#include "controller/ControllerRooms.h"
#include "controller/DriverServices.h"
#include "controller/HourMinute.h"
#include "controller/ModelCatalogue.h"
#include "controller/Recorder.h"
#include "controller/SchemeParameters.h"
#include "host/BRFile.h"
#include "host/BreltoTime.h"
#include "host/DevicePaths.h"
#include "host/ImagingLibraries.h"
#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"
#include "imaging/EE.h"
#include "imaging/ISPParam.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string_view>

using sensorhost::ScopedLock;

namespace {

using namespace sensorcontrol;
using Log = ControllerObserver::Log;

constexpr unsigned int LogSize = 10240;
constexpr unsigned int LogCount = 3;
constexpr int DebugLineSize = 50;

/// Stops the camera block's pan/tilt menu; sent without a terminator.
constexpr std::string_view StopMenuCommand = "MENUON";

constexpr int DrainChunk = 20;
/// More chunks than a terminal can hold back: what still comes then is a line that never falls silent.
constexpr int MostDrainChunks = 256;

/// How often a long wait of a start looks whether the start was cancelled.
constexpr int LookMicroseconds = 50'000;

} // namespace

ISensorController::Rooms::Rooms(ISensorController& controller)
    : c(controller), traits(traitsOf(controller.m_nSensorType)), journal(c.m_pErrorLog, c.m_pInitLog),
      files(journal, *c.m_pFactoryConfigFile, *c.m_pEspecialConfigFile, c.m_ConfigFiles),
      tuning({*c.m_pISPParam, *c.m_pEE, c.m_nLastA0, c.m_nLastTM, c.m_nLastDC, c.m_nLastEE, c.m_nTNFMode, c.m_nTNFValue,
              c.m_bISPRealTimeUpdate, c.m_nISPDelayTime},
             traits.edgesByTable, traits.edgesOffWithFilter) {}

ISensorController::ISensorController(int sensorType)
    : m_pIdManager(std::make_unique<IdManager>()), m_pCurrentCache(std::make_unique<SensorCache>()),
      m_pLastCache(std::make_unique<SensorCache>()), m_pRecvBuffer(std::make_unique<char[]>(ReceiveBufferSize)),
      m_nSensorType(sensorType), m_pErrorLog(new SensorLog), m_pInitLog(new SensorLog),
      m_pFactoryConfigFile(std::make_unique<SensorConfigFile>(paths::FactoryFile)),
      m_pEspecialConfigFile(std::make_unique<SensorConfigFile>(paths::EspecialFile)),
      m_pISPParam(std::make_unique<ISPParam>()), m_pEE(std::make_unique<EE>()),
      m_pRooms(std::make_unique<Rooms>(*this)) {
    m_pIdManager->addParameterId(IdManager::Common, scheme::FirstId, scheme::LastId);

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
    // A pass under way leaves its work between two tries, frames or parameters; the thread class ends its waits.
    m_pRooms->isStopping = true;
    if (m_DNChangeThread)
        m_DNChangeThread->stop();
    m_DNChangeThread.reset();
}

void ISensorController::setOperator(const SafePointer<IUARTController>& uart, const SafePointer<IGPIO>& gpio) {
    m_pUARTController = uart;
    m_pGPIO = gpio;
}

void ISensorController::setObserver(ControllerObserver* observer) { m_pRooms->journal.setObserver(observer); }

int ISensorController::init(int videoSystem, const ModuleConfigure& configure, const VideoResolution& resolution) {
    // The host's pointers throw where an object is missing: that ends a start as well.
    struct Start {
        explicit Start(Rooms& of) : rooms(of) {
            rooms.starter = std::this_thread::get_id();
            rooms.isStarting = true;
        }
        ~Start() {
            rooms.isStarting = false;
            rooms.starter = std::thread::id();
        }
        Start(const Start&) = delete;
        Start& operator=(const Start&) = delete;
        Rooms& rooms;
    };
    const Start start(*m_pRooms);
    return m_pRooms->bringUp(videoSystem, configure, resolution);
}

int ISensorController::cancelStart() {
    if (!m_pRooms->isStarting)
        return 0;
    m_pRooms->isCancelled = true;
    return 1;
}

int ISensorController::Rooms::leaveStart() {
    c.m_SensorStatus = NotInited;
    c.m_BaseSensorStatus = NotInited;
    c.ErrorPrintf("the start was cancelled");
    return 0;
}

int ISensorController::Rooms::bringUp(int videoSystem, const ModuleConfigure& configure,
                                      const VideoResolution& resolution) {
    if (DRV_init()) {
        c.ErrorPrintf("DRV_init Failed!");
        return 0;
    }
    if (ALG_sysInit()) {
        c.ErrorPrintf("ALG_sysInit Failed!");
        DRV_exit();
        return 0;
    }
    if (brewfi_init()) {
        c.ErrorPrintf("brewfi_init Failed!");
        return 0;
    }
    if (!c.m_pErrorLog->init(paths::ErrorLog, LogSize, LogCount))
        std::printf("%s can not be written, errors go to the console only\n", paths::ErrorLog);
    if (!c.m_pInitLog->init(paths::InitLog, LogSize, LogCount))
        std::printf("%s can not be written, start-up goes to the console only\n", paths::InitLog);

    c.ISPParamThreadInit();
    enterStage(Stage::Port);
    if (!c.initController(videoSystem, configure)) {
        c.ErrorPrintf("initController failed");
        return 0;
    }

    // From here on nothing but the host fails the start: the camera comes up with what it has.
    if (c.m_nInfrared == 2)
        c.m_nInfrared = 1;
    if (!traits.isParameterAccessClosed)
        c.m_SensorStatus = InitSuccess;
    if (!c.stopPTZ())
        c.InitPrintf("stop PTZ @ISensorController::init failed");
    enterStage(Stage::VideoSystem);
    if (!c.setSensorVideoSystem(videoSystem, resolution))
        c.InitPrintf("init setSensorVideoSystem failed");
    if (isCancelled)
        return leaveStart();
    enterStage(Stage::DayMode);
    c.enterDayMode();
    if (isCancelled)
        return leaveStart();
    c.checkSensorConfigVersion();
    c.m_BaseSensorStatus = InitSuccess;
    c.initParamSchemeList();
    if (!c.initConfigFile() && !isCancelled)
        c.InitPrintf("initConfigFile failed");
    if (!isCancelled)
        applyStartValues();
    if (isCancelled)
        return leaveStart();

    enterStage(Stage::Notification);
    if (!c.NotifySensorInitComplate())
        c.InitPrintf("NotifySensorInitComplate failed");
    isDrainDue = !traits.isParameterAccessClosed; // such a module is notified of nothing, and its thread reads the port
    if (!c.m_DNChangeThread->start())
        c.InitPrintf("m_DNChangeThread->start() failed");
    c.m_bisInited = true;
    if (OperationReport* report = recorder::report())
        report->isUp = true;
    const recorder::LogOnly success;
    c.ErrorPrintf("ISensorController::initSensor  success\n");
    enterStage(Stage::Up);
    return 1;
}

void ISensorController::Rooms::applyStartValues() {
    // The values are the clock's, the choice stays as it was saved: in automatic mode the first pass of the thread
    // corrects it. So the span of the choice stays too, or the next flush would write another one's into its file.
    int scheme = 0;
    std::string text;
    c.readCurrentParam(scheme, text);
    if (scheme != c.m_nParamScheme) {
        if (scheme < 0)
            c.InitPrintf("parameter scheme %d is chosen, no span is open: factory values", c.m_nParamScheme.load());
        else if (c.m_nParamMode == 0)
            c.InitPrintf("parameter scheme %d is chosen, the clock applies %d", c.m_nParamScheme.load(), scheme);
        keepSpanInForce(scheme, text);
    }
    if (OperationReport* report = recorder::report())
        report->source = scheme < 0 ? paths::FactoryFile : files.find(scheme)->getFilePath();
    std::map<int, int> values;
    SensorParameterParser::parseSensorParameter(text, values);
    enterStage(Stage::Parameters, static_cast<int>(values.size()));
    const int areTaken = c.setParameters(text);
    const recorder::LogOnly parametersTellIt;
    if (!areTaken && !isCancelled)
        c.InitPrintf("setParameters failed");
}

void ISensorController::Rooms::enterStage(Stage next, int total) {
    if (starter != std::this_thread::get_id())
        return;
    progress = {next, 0, total};
    journal.progress(progress);
}

void ISensorController::Rooms::advance() {
    if (starter != std::this_thread::get_id() || progress.total == 0)
        return;
    ++progress.done;
    journal.progress(progress);
}

void ISensorController::Rooms::drainAfterStart() {
    if (!isDrainDue.exchange(false) || c.m_pUARTController.isNull() || c.m_nUartHandle < 0)
        return;
    ScopedLock lock(DriverServices::lineMutex(c));
    c.clearUartBuffer();
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
    ScopedLock lock(m_ParamMutex);
    m_pRooms->files.removeOutdated(m_nSensorConfigVersion, m_nSensorConfigVersion2);
    return 1;
}

int ISensorController::initConfigFile() {
    ScopedLock lock(m_ParamMutex);
    if (m_pRooms->choice.isThere())
        m_pRooms->readSchemeChoice();
    else
        createSensorXML();

    SchemeFiles& files = m_pRooms->files;
    const bool isFirstStart = !files.hasFactoryFile();
    if (isFirstStart && !initFactorySetting()) {
        ErrorPrintf("initFactorySetting failed");
        return 0;
    }
    std::string all;
    if (!getAllParametersFromSensor(all)) {
        ErrorPrintf("%dgetParametersFromSensor() failed", isFirstStart ? 1 : 2);
        return 0;
    }
    m_pRooms->enterStage(Rooms::Stage::Files);
    if (isFirstStart)
        files.createFactoryFile(all);
    else
        files.alignFactoryFile(all);
    if (!files.prepareSchemes(all))
        return 0;
    m_pRooms->loadSchemes();
    return 1;
}

void ISensorController::Rooms::loadSchemes() {
    for (std::size_t i = 0; i < c.m_ConfigFiles.size(); ++i) {
        const int number = static_cast<int>(i);
        std::map<int, int> stored = files.values(number);
        c.setParamSchemeStartTime(number,
                                  hourMinute(stored[scheme::StartHourId], stored[scheme::StartMinuteId] * 10LL));
        c.setParamSchemeEndTime(number, hourMinute(stored[scheme::EndHourId], stored[scheme::EndMinuteId] * 10LL));
        c.setParamSchemeEnableFlag(number, stored[scheme::EnableId]);
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
    for (int chunk = 0; chunk < MostDrainChunks && !m_pRooms->isEnding(); ++chunk)
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
    constexpr int LineSize = 100;
    char text[LineSize];
    int used = 0;
    for (int i = 0; i < length; ++i) {
        char item[sizeof(",0xff")];
        const int size =
            std::snprintf(item, sizeof item, i == 0 ? "0x%x" : ",0x%x", static_cast<unsigned char>(data[i]));
        if (used + size >= LineSize)
            break;
        std::copy_n(item, size + 1, text + used);
        used += size;
    }
    ErrorPrintf("%s", text);
}

void ISensorController::InitPrintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    m_pRooms->journal.write(Log::Init, format, arguments);
    va_end(arguments);
}

void ISensorController::ErrorPrintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    m_pRooms->journal.write(Log::Error, format, arguments);
    va_end(arguments);
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

namespace sensorcontrol {

void DriverServices::setLineMutex(ISensorController& controller, BRMutex& mutex) {
    controller.m_pRooms->lineMutex = &mutex;
}

BRMutex& DriverServices::lineMutex(ISensorController& controller) {
    BRMutex* const own = controller.m_pRooms->lineMutex;
    return own != nullptr ? *own : controller.m_UartMutex;
}

bool DriverServices::isEnding(const ISensorController& controller) { return controller.m_pRooms->isEnding(); }

void DriverServices::wait(ISensorController& controller, const BreltoTime& span) {
    const ISensorController::Rooms& rooms = *controller.m_pRooms;
    // Outside a start the thread class ends the wait of a thread that is stopped.
    if (!rooms.isStarting) {
        BreltoTime::wait(span);
        return;
    }
    long long rest = span.getSeconds() * 1'000'000LL + span.getMicroseconds();
    for (; rest > 0 && !rooms.isEnding(); rest -= LookMicroseconds)
        BreltoTime::wait(BreltoTime(0, static_cast<int>(std::min<long long>(rest, LookMicroseconds))));
}

void DriverServices::waitForRestart(ISensorController& controller, int seconds) {
    controller.m_pRooms->enterStage(StartProgress::Stage::Restart, seconds);
    wait(controller, BreltoTime(seconds, 0));
}

void DriverServices::putInForce(ISensorController& controller, int status) { controller.m_pRooms->putInForce(status); }

int DriverServices::driveFilter(ISensorController& controller, int level) {
    return controller.m_pRooms->driveFilter(level);
}

int DriverServices::driveInfraredLight(ISensorController& controller, int level) {
    return controller.m_pRooms->driveInfraredLight(level);
}

void DriverServices::tellPort(ISensorController& controller, bool works) { controller.m_pRooms->journal.port(works); }

} // namespace sensorcontrol
