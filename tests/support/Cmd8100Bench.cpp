#include "support/Cmd8100Bench.h"

#include "controller/SenseControllerFactory.h"

Cmd8100Bench::Cmd8100Bench()
    : m_pClock(std::make_shared<sensorhost::SimulatedClock>()), m_pPort(new BlockPort),
      m_pGpio(new sensorhost::MemoryGpio) {
    sensorhost::installClock(m_pClock);
    m_Root.writeSchemeCount(1);
}

Cmd8100Bench::~Cmd8100Bench() {
    destroy();
    sensorhost::installClock(nullptr);
}

ISensorController& Cmd8100Bench::create() {
    destroy();
    m_pController = SenseControllerFactory::create(16);
    m_pController->setOperator(m_pPort, m_pGpio);
    return *m_pController;
}

int Cmd8100Bench::bringUp(const std::string& detail, int videoSystem, const std::string& parameters) {
    return create().init(videoSystem, ModuleConfigure(16, detail, parameters), VideoResolution(1920, 1080));
}

bool Cmd8100Bench::hasLogged(const std::string& text) {
    const std::string log = errorLog();
    if (log.size() < m_nLogSeen)
        m_nLogSeen = 0; // rotated
    const bool isThere = log.find(text, m_nLogSeen) != std::string::npos;
    m_nLogSeen = log.size();
    return isThere;
}

std::string Cmd8100Bench::framesOf(int id, int value, int& result) {
    m_pPort->takeSent();
    result = controller().setParameterToSensor(id, value);
    std::string frames;
    for (const std::string& frame : m_pPort->takeSent())
        frames += (frames.empty() ? "" : " | ") + frame;
    return frames;
}
