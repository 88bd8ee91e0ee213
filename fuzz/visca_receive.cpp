// A camera block that answers with whatever it likes: the input is the stream of bytes that the port gives, each piece
// headed by its length.
#include "FuzzSupport.h"
#include "drivers/visca/CMD8100SenseController.h"
#include "host/IGPIO.h"
#include "host/IUARTController.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

using fuzzing::require;

namespace {

class HostilePort final : public IUARTController {
public:
    int open(const char*) override { return 1; }
    int close(int) override { return 1; }
    int setParameter(int, int, int, int, int) override { return 1; }

    int send(int, const char*, int length) override {
        require(length > 0 && length <= 13);
        ++m_nSent;
        return length;
    }

    int recv(int, char* buffer, int length, int timeout) override {
        require(length > 0 && length <= 100 && timeout > 0);
        if (m_nSize == 0)
            return m_nSent % 7 == 0 ? -1 : 0;
        const std::size_t wanted = std::min<std::size_t>(*m_pData & 0x1fU, static_cast<std::size_t>(length));
        const std::size_t given = std::min(wanted, m_nSize - 1);
        std::memcpy(buffer, m_pData + 1, given);
        m_pData += given + 1;
        m_nSize -= given + 1;
        return static_cast<int>(given);
    }

    void load(const std::uint8_t* data, std::size_t size) {
        m_pData = data;
        m_nSize = size;
        m_nSent = 0;
    }
    int sentFrames() const { return m_nSent; }

private:
    const std::uint8_t* m_pData = nullptr;
    std::size_t m_nSize = 0;
    int m_nSent = 0;
};

/// A port that answers every setting and gives no inquiry an answer, to come up with.
void bringUp(CMD8100SenseController& controller, HostilePort& port) {
    static std::string replies;
    for (int i = 0; i < 400; ++i)
        replies += "\x03\x90\x41\xff";
    port.load(reinterpret_cast<const std::uint8_t*>(replies.data()), replies.size());
    require(controller.init(0, ModuleConfigure(16, "RS485=p;isInfrared=0;generation=3", "RS485=9600,8,1,0"),
                            VideoResolution()) == 1);
}

struct Bench {
    Bench() : port(new HostilePort) {
        if (std::freopen("/dev/null", "w", stdout) == nullptr)
            std::abort();
        sensorhost::setRootFolder(folder.path());
        sensorhost::installClock(std::make_shared<sensorhost::SimulatedClock>());
        controller.setOperator(port, SafePointer<IGPIO>());
        bringUp(controller, *port);
    }

    fuzzing::ScratchFolder folder;
    SafePointer<HostilePort> port;
    CMD8100SenseController controller;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Bench& bench = *new Bench; // never destroyed: the fuzzer ends by exit, with the clock still installed
    ISensorController& controller = bench.controller;
    bench.port->load(data, size);

    std::string before;
    require(controller.getAllParameters(before) == 1);
    int status = -1;
    const int hasStatus = controller.getDNStatusFromSensor(status);
    require(hasStatus ? status == 0 || status == 1 : status == -1);
    require(bench.port->sentFrames() <= 1 + 3);

    const int isSet = controller.setParameters("(1,80)(4,3)(5,10)(0,2)(66,1)(65,7)(12,1)");
    std::string values;
    require(controller.getParameters("(1)", values) == 1);
    require(!isSet || values == "(1,80)");
    controller.setParameters(before);
    controller.setSensorVideoSystem(1, VideoResolution());
    controller.resetParameters();
    require(controller.getSensorStatus() == 2);
    return 0;
}
