// Any model's block answers with whatever it likes. The first byte of the input chooses the model; the rest is the
// stream of bytes that the port gives, each piece headed by its length.
#include "FuzzSupport.h"
#include "controller/ModelCatalogue.h"
#include "controller/SchemeParameters.h"
#include "controller/SenseControllerFactory.h"
#include "host/IGPIO.h"
#include "host/IUARTController.h"
#include "host/VideoResolution.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "tests/support/OpenController.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using fuzzing::require;

namespace {

/// Gives its bytes to the fuzzer's thread alone: a model's own threads hear nothing.
class HostilePort final : public IUARTController {
public:
    int open(const char*) override { return 1; }
    int close(int) override { return 1; }
    int setParameter(int, int, int, int, int) override { return 1; }

    int send(int, const char* bytes, int length) override {
        require(bytes != nullptr && length >= 0 && length <= 20);
        return length;
    }

    int recv(int, char* buffer, int length, int timeout) override {
        require(buffer != nullptr && length <= 100 && timeout > 0);
        if (std::this_thread::get_id() != m_Owner || m_nSize == 0 || length < 0)
            return 0;
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
    }

private:
    const std::thread::id m_Owner = std::this_thread::get_id();
    const std::uint8_t* m_pData = nullptr;
    std::size_t m_nSize = 0;
};

/// A controller of every model that has a port, as after its start.
struct Bench {
    Bench() : port(new HostilePort) {
        if (std::freopen("/dev/null", "w", stdout) == nullptr)
            std::abort();
        sensorhost::setRootFolder(folder.path());
        sensorhost::installClock(std::make_shared<sensorhost::SimulatedClock>());
        sensorhost::ImagingStandIn::getInstance().setRecording(false);
        for (const int id : sensorcontrol::listModuleIds()) {
            const auto model = sensorcontrol::describeModel(id);
            // A model without parameters of its own takes every one of them and sends nothing.
            if (!model || !model->hasPort || sensorcontrol::scheme::isSchemeId(model->parameters.front().id))
                continue;
            SafePointer<ISensorController> controller = SenseControllerFactory::create(id);
            controller->setOperator(port, SafePointer<IGPIO>(new sensorhost::MemoryGpio));
            (*controller).*Peek::Status = ISensorController::InitSuccess;
            models.push_back({controller, *model});
        }
    }

    struct Model {
        SafePointer<ISensorController> controller;
        sensorcontrol::ModelInfo info;
    };

    fuzzing::ScratchFolder folder;
    SafePointer<HostilePort> port;
    std::vector<Model> models;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Bench& bench = *new Bench; // never destroyed: the fuzzer ends by exit, with the clock still installed
    if (size == 0)
        return 0;
    Bench::Model& model = bench.models[*data % bench.models.size()];
    ISensorController& controller = *model.controller;
    bench.port->load(data + 1, size - 1);

    int status = -1;
    const int hasStatus = controller.getDNStatusFromSensor(status);
    require(status == -1 || (hasStatus && (status == 0 || status == 1)));
    for (const sensorcontrol::ParameterInfo& parameter : model.info.parameters) {
        int value = 0;
        const int isRead = controller.getParameterFromSensor(parameter.id, value);
        require(isRead == 0 || isRead == 1);
        require(!isRead || !parameter.factoryValue || value == *parameter.factoryValue);
        const int isSet = controller.setParameterToSensor(
            parameter.id, parameter.accepts.empty() ? value : parameter.accepts.front().high);
        require(isSet == 0 || isSet == 1);
    }
    int gain = 0;
    controller.getCurrentGain(gain);
    controller.setSensorVideoSystem(size % 3 == 0 ? 1 : 0, VideoResolution(1920, 1080));
    controller.NotifySensorInitComplate();
    controller.turnPictureToDay();
    controller.turnPictureToNight();
    require(controller.getSensorStatus() == 2);
    return 0;
}
