#include "drivers/visca/ConsolePrints.h"

#include <cstdio>

namespace sensorcontrol::visca {

void printArray(const char* bytes, int length) {
    for (int i = 0; i < length; ++i)
        std::printf("0x%02x\t", static_cast<unsigned char>(bytes[i]));
    std::puts("");
}

void printIntArray(const int* values, int length) {
    for (int i = 0; i < length; ++i)
        std::printf("0x%02x\t", static_cast<unsigned int>(values[i]));
    std::puts("");
}

} // namespace sensorcontrol::visca
