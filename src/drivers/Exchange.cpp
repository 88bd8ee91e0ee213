#include "drivers/Exchange.h"

#include "controller/DriverServices.h"
#include "controller/Recorder.h"
#include "host/ScopedLock.h"

#include <algorithm>

namespace sensorcontrol {

namespace {

using Answer = OperationReport::Answer;

void record(ISensorController& controller, std::span<const char> bytes) {
    controller.recodeArray(bytes.data(), static_cast<int>(bytes.size()));
}

Answer answerOf(const Attempt& made) {
    switch (made.outcome) {
    case Outcome::Done:
        return made.reply.empty() ? Answer::NotRead : Answer::Accepted;
    case Outcome::ShortSend:
        return Answer::PortFailed;
    case Outcome::NoReply:
    case Outcome::Short:
        return made.count < 0 ? Answer::PortFailed : made.reply.empty() ? Answer::None : Answer::Cut;
    default:
        return Answer::Refused;
    }
}

Attempt tryOnce(const SerialLine& line, const Link& link, std::span<const char> command, int asked) {
    const int length = static_cast<int>(command.size());
    const int sent = line.port.send(line.handle, command.data(), length);
    if (sent != length)
        return {Outcome::ShortSend, sent, {}};
    if (link.clearsBuffer)
        std::ranges::fill(line.buffer, '\0');
    std::size_t received = 0;
    int count = 0;
    for (;;) {
        const std::span<const char> soFar = line.buffer.first(received);
        const int wanted = link.framing(soFar, asked) - static_cast<int>(received);
        if (wanted <= 0)
            return {link.accepts(command, soFar) ? Outcome::Done : Outcome::Refused, count, soFar};
        if (static_cast<std::size_t>(wanted) > line.buffer.size() - received)
            return {Outcome::TooLong, count, soFar};
        for (int receive = 0; receive < link.receives; ++receive) {
            count = line.port.recv(line.handle, line.buffer.data() + received, wanted, link.timeout);
            if (count != 0 || received > 0)
                break;
        }
        const bool isFirst = received == 0;
        received += static_cast<std::size_t>(std::clamp(count, 0, wanted));
        if (count != wanted)
            return {isFirst && received == 0 ? Outcome::NoReply : Outcome::Short, count, line.buffer.first(received)};
    }
}

} // namespace

bool isEcho(std::span<const char> command, std::span<const char> reply) { return std::ranges::equal(command, reply); }

bool isSumRight(std::span<const char>, std::span<const char> reply) {
    if (reply.size() < 2)
        return false;
    unsigned int sum = 0;
    for (const char byte : reply.first(reply.size() - 1))
        sum += static_cast<unsigned char>(byte);
    return (sum & 0xffU) == static_cast<unsigned char>(reply.back());
}

bool isExchangeable(const SerialLine& line, const char* name, int length, int asked) {
    if (length >= 0 && asked >= 0 && static_cast<std::size_t>(asked) <= line.buffer.size())
        return true;
    line.controller.ErrorPrintf("===%s: a command of %d bytes and a reply of %d are refused", name, length, asked);
    return false;
}

Attempt attempt(const SerialLine& line, const Link& link, std::span<const char> command, int asked) {
    const Attempt made = tryOnce(line, link, command, asked);
    const Answer answer = answerOf(made);
    DriverServices::tellPort(line.controller, answer != Answer::PortFailed);
    recorder::frame(command, answer, made.reply);
    return made;
}

int exchange(const SerialLine& line, const ExchangeRule& rule, const char* bytes, int length, int asked, char* reply) {
    if (!isExchangeable(line, rule.name, length, asked))
        return 0;
    const std::span<const char> command(bytes, static_cast<std::size_t>(length));
    const recorder::LogOnly framesTellIt;
    sensorhost::ScopedLock lock(line.mutex);
    for (int number = 1; number <= rule.tries; ++number) {
        rule.announce(line, number, command);
        const Attempt made = attempt(line, rule.link, command, asked);
        if (made.outcome == Outcome::Done) {
            if (reply != nullptr)
                std::ranges::copy(made.reply, reply);
            return 1;
        }
        rule.report(line, rule, number, command, made);
        if (DriverServices::isEnding(line.controller))
            return 0;
        drain(line, rule.drain);
    }
    return 0;
}

void reportAttempt(const SerialLine& line, const ExchangeRule& rule, int number, std::span<const char> command,
                   const Attempt& failed) {
    ISensorController& controller = line.controller;
    if (failed.outcome == Outcome::ShortSend) {
        controller.ErrorPrintf("===send(%d times) @%s failed,send(%d):", number,
                               rule.sendName != nullptr ? rule.sendName : rule.name, failed.count);
        record(controller, command);
        return;
    }
    const bool isWhole = failed.outcome == Outcome::Refused;
    controller.ErrorPrintf("===%s(%d times) @%s failed,send:", isWhole ? "check" : "recv", number, rule.name);
    record(controller, command);
    controller.ErrorPrintf("===recv(%d):", isWhole ? static_cast<int>(failed.reply.size()) : failed.count);
    record(controller, failed.reply);
}

} // namespace sensorcontrol
