#include "drivers/Exchange.h"

#include "controller/DriverServices.h"
#include "controller/Recorder.h"
#include "host/ScopedLock.h"

#include <algorithm>

namespace sensorcontrol {

namespace {

void record(ISensorController& controller, std::span<const char> bytes) {
    controller.recodeArray(bytes.data(), static_cast<int>(bytes.size()));
}

using Answer = OperationReport::Answer;

Answer tryOnce(const SerialLine& line, const ExchangeRule& rule, int attempt, std::span<const char> command,
               std::span<char> reply, int& received) {
    ISensorController& controller = line.controller;
    const int length = static_cast<int>(command.size());
    const int sent = line.port.send(line.handle, command.data(), length);
    if (sent != length) {
        controller.ErrorPrintf("===send(%d times) @%s failed,send(%d):", attempt, rule.name, sent);
        record(controller, command);
        return Answer::PortFailed;
    }
    const int wanted = static_cast<int>(reply.size());
    const int result = line.port.recv(line.handle, reply.data(), wanted, rule.timeout);
    received = std::clamp(result, 0, wanted);
    if (result != wanted) {
        controller.ErrorPrintf("===recv(%d times) @%s failed,send:", attempt, rule.name);
        record(controller, command);
        controller.ErrorPrintf("===recv(%d):", result);
        record(controller, reply.first(static_cast<std::size_t>(received)));
        return result < 0 ? Answer::PortFailed : result == 0 ? Answer::None : Answer::Cut;
    }
    if (rule.accepts != nullptr && !rule.accepts(controller, command, reply)) {
        rule.reportRefusal(controller, rule, attempt, command, reply);
        return Answer::Refused;
    }
    return Answer::Accepted;
}

} // namespace

int exchange(const SerialLine& line, const ExchangeRule& rule, const char* bytes, int length, int replyLength,
             char* reply) {
    // A port's -1 would pass for all of -1 bytes.
    if (length < 0 || replyLength < 0 || static_cast<std::size_t>(replyLength) > line.buffer.size()) {
        line.controller.ErrorPrintf("===%s: a command of %d bytes and a reply of %d are refused", rule.name, length,
                                    replyLength);
        return 0;
    }
    const std::span<const char> command(bytes, static_cast<std::size_t>(length));
    const std::span<char> received = line.buffer.first(static_cast<std::size_t>(replyLength));
    const recorder::LogOnly framesTellIt;
    sensorhost::ScopedLock lock(line.mutex);
    for (int attempt = 1; attempt <= rule.tries; ++attempt) {
        int count = 0;
        const Answer answer = tryOnce(line, rule, attempt, command, received, count);
        DriverServices::tellPort(line.controller, answer != Answer::PortFailed);
        recorder::frame(command, answer, received.first(static_cast<std::size_t>(count)));
        if (answer == Answer::Accepted) {
            if (reply != nullptr)
                std::ranges::copy(received, reply);
            return 1;
        }
        if (DriverServices::isEnding(line.controller))
            return 0;
        line.controller.clearUartBuffer();
    }
    return 0;
}

void reportDifference(ISensorController& controller, const ExchangeRule& rule, int attempt,
                      std::span<const char> command, std::span<const char> reply) {
    controller.ErrorPrintf("===check(%d times) @%s failed,send:", attempt, rule.name);
    record(controller, command);
    controller.ErrorPrintf("===recv(%d):", static_cast<int>(reply.size()));
    record(controller, reply);
}

} // namespace sensorcontrol
