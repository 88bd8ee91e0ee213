#include "host/linux/GpioCharacterDevice.h"

#include <map>
#include <mutex>
#include <utility>

#include <gpiod.h>

namespace sensorhost {

namespace {

constexpr const char* Consumer = "sensorcontrol";

struct ChipCloser {
    void operator()(gpiod_chip* chip) const { ::gpiod_chip_close(chip); }
};

struct LineReleaser {
    void operator()(gpiod_line* line) const { ::gpiod_line_release(line); }
};

struct Pin {
    std::unique_ptr<gpiod_line, LineReleaser> line;
    bool output;
};

} // namespace

struct GpioCharacterDevice::State {
    std::mutex mutex;
    // Closing a chip frees its lines: they have to go first.
    std::map<int, std::unique_ptr<gpiod_chip, ChipCloser>> chips;
    std::map<std::pair<int, int>, Pin> pins;

    gpiod_line* findLine(int group, int pin) {
        if (group < 0 || pin < 0)
            return nullptr;
        auto& chip = chips[group];
        if (chip == nullptr)
            chip.reset(::gpiod_chip_open_by_number(static_cast<unsigned int>(group)));
        return chip != nullptr ? ::gpiod_chip_get_line(chip.get(), static_cast<unsigned int>(pin)) : nullptr;
    }

    Pin* request(int group, int pin, bool output, int value) {
        gpiod_line* const line = findLine(group, pin);
        if (line == nullptr)
            return nullptr;
        pins.erase({group, pin});
        const int failed =
            output ? ::gpiod_line_request_output(line, Consumer, value) : ::gpiod_line_request_input(line, Consumer);
        if (failed != 0)
            return nullptr;
        return &pins.insert_or_assign({group, pin}, Pin{std::unique_ptr<gpiod_line, LineReleaser>(line), output})
                    .first->second;
    }
};

GpioCharacterDevice::GpioCharacterDevice() : m_pState(std::make_unique<State>()) {}

GpioCharacterDevice::~GpioCharacterDevice() = default;

int GpioCharacterDevice::enable() { return 1; }

int GpioCharacterDevice::disable() {
    const std::lock_guard guard(m_pState->mutex);
    m_pState->pins.clear();
    m_pState->chips.clear();
    return 1;
}

int GpioCharacterDevice::setValue(int group, int pin, int value) {
    const std::lock_guard guard(m_pState->mutex);
    const int level = value != 0 ? 1 : 0;
    const auto found = m_pState->pins.find({group, pin});
    if (found != m_pState->pins.end() && found->second.output)
        return ::gpiod_line_set_value(found->second.line.get(), level) == 0 ? 1 : 0;
    return m_pState->request(group, pin, true, level) != nullptr ? 1 : 0;
}

int GpioCharacterDevice::getValue(int group, int pin, int& value) {
    const std::lock_guard guard(m_pState->mutex);
    const auto found = m_pState->pins.find({group, pin});
    const Pin* const used = found != m_pState->pins.end() ? &found->second : m_pState->request(group, pin, false, 0);
    if (used == nullptr)
        return 0;
    const int level = ::gpiod_line_get_value(used->line.get());
    if (level < 0)
        return 0;
    value = level;
    return 1;
}

} // namespace sensorhost
