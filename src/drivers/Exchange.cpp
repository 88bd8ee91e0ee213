#include "drivers/Exchange.h"

#include "host/ScopedLock.h"

#include <algorithm>

namespace sensorcontrol {

namespace {

void record(ISensorController& controller, std::span<const char> bytes) {
    controller.recodeArray(bytes.data(), static_cast<int>(bytes.size()));
}

bool tryOnce(const SerialLine& line, const ExchangeRule& rule, int attempt, std::span<const char> command,
             std::span<char> reply) {
    ISensorController& controller = line.controller;
    const int length = static_cast<int>(command.size());
    const int sent = line.port.send(line.handle, command.data(), length);
    if (sent != length) {
        controller.ErrorPrintf("===send(%d times) @%s failed,send(%d):", attempt, rule.name, sent);
        record(controller, command);
        return false;
    }
    const int wanted = static_cast<int>(reply.size());
    const int received = line.port.recv(line.handle, reply.data(), wanted, rule.timeout);
    if (received != wanted) {
        controller.ErrorPrintf("===recv(%d times) @%s failed,send:", attempt, rule.name);
        record(controller, command);
        controller.ErrorPrintf("===recv(%d):", received);
        record(controller, reply.first(static_cast<std::size_t>(std::clamp(received, 0, wanted))));
        return false;
    }
    if (rule.accepts != nullptr && !rule.accepts(controller, command, reply)) {
        rule.reportRefusal(controller, rule, attempt, command, reply);
        return false;
    }
    return true;
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
    sensorhost::ScopedLock lock(line.mutex);
    for (int attempt = 1; attempt <= rule.tries; ++attempt) {
        if (tryOnce(line, rule, attempt, command, received)) {
            if (reply != nullptr)
                std::ranges::copy(received, reply);
            return 1;
        }
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
