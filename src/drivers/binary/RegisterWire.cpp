#include "drivers/binary/RegisterWire.h"

#include <cstdio>

namespace sensorcontrol::binary {

void printFrame(std::span<const char> frame) {
    for (const char byte : frame)
        std::printf("0x%02x ", static_cast<unsigned char>(byte));
    std::puts("");
}

} // namespace sensorcontrol::binary
