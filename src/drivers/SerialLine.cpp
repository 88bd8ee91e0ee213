#include "drivers/SerialLine.h"

#include "controller/DriverServices.h"
#include "controller/Recorder.h"

#include <algorithm>
#include <cstdio>

namespace sensorcontrol {

namespace {

constexpr int LargestPiece = 20;
constexpr int MostDrained = 5120; ///< bytes; a port that goes on beyond is no module

} // namespace

void drain(const SerialLine& line, const DrainHabit& habit) {
    if (habit.notice != nullptr)
        std::puts(habit.notice);
    char buffer[LargestPiece];
    const int piece = std::min(habit.piece, LargestPiece);
    for (int drained = 0; drained < MostDrained && !DriverServices::isEnding(line.controller); drained += piece)
        if (line.port.recv(line.handle, buffer, piece, habit.timeout) != piece)
            return;
}

int sendRaw(const SerialLine& line, std::span<const char> command) {
    const int length = static_cast<int>(command.size());
    const int sent = line.port.send(line.handle, command.data(), length);
    recorder::frame(command, sent == length ? OperationReport::Answer::NotRead : OperationReport::Answer::PortFailed,
                    {});
    return sent;
}

} // namespace sensorcontrol
