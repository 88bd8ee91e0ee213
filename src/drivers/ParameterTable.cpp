#include "drivers/ParameterTable.h"

#include "controller/Recorder.h"
#include "drivers/ShadowRegister.h"
#include "host/BreltoTime.h"
#include "host/GlobalEnv.h"

#include <algorithm>
#include <array>
#include <cstdio>

// The texts are the tables', proved to take one int.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"

namespace sensorcontrol {

namespace {

const ParameterRow* findRow(const ModelDescription& model, int id) {
    const auto row = std::ranges::lower_bound(model.rows, id, {}, &ParameterRow::id);
    return row != model.rows.end() && row->id == id ? &*row : nullptr;
}

/// Says the row's text, or the regular one: the verb, the row's name and what the model puts behind it.
void say(ISensorController& controller, const Message& message, const char* verb, const char* name,
         const char* regularEnd, int value) {
    if (!message.isRegular()) {
        ParameterTable::say(controller, message, value);
    } else if (regularEnd != nullptr) {
        char text[100];
        std::snprintf(text, sizeof text, "%s%s%s", verb, name, regularEnd);
        ParameterTable::say(controller, text, value);
    }
}

void refuse(ISensorController& controller, const ModelDescription& model, const ParameterRow& row, int value) {
    say(controller, row.refusal, "set", row.name, model.refusalText, value);
    recorder::refuse("not among the accepted values");
}

void leaveUnserved(ISensorController& controller, const ModelDescription& model, int id) {
    recorder::leaveUnserved();
    ParameterTable::say(controller, model.unservedText, id);
}

void pause(int microseconds) {
    constexpr int Second = 1000000;
    if (microseconds > 0)
        BreltoTime::wait(BreltoTime(microseconds / Second, microseconds % Second));
}

void waitAfter(const ModelDescription& model, const ParameterRow& row) {
    pause(row.wait == ModelsWait ? model.wait : row.wait);
}

bool isMet(const Condition& condition, int stored, int infrared) {
    return condition.kind == Condition::Always ||
           (condition.kind == Condition::WithoutInfrared ? infrared == 0 : condition.isMetBy(stored));
}

using StoredValues = std::array<int, FramePattern::MostStored>;

bool readStored(ISensorController& controller, std::span<const std::int16_t> ids, StoredValues& values) {
    for (std::size_t i = 0; i < ids.size(); ++i)
        if (!controller.getParameter(ids[i], values[i]))
            return false;
    return true;
}

/// Sends a frame with a number in its places; of a field with what the register holds beside it.
int sendFrame(ISensorController& controller, const ModelDescription& model, const FramePattern& pattern,
              const BitField& field, int number, std::span<const int> stored = {}) {
    const auto send = [&](int word) {
        const FramePattern::Frame frame = pattern.build(word, stored);
        return model.transmit(controller, frame.data(), static_cast<int>(pattern.size()));
    };
    return field.isWhole() ? send(number) : field.shadow(controller).change(number, field.first, field.width, send);
}

} // namespace

void ParameterTable::registerIds(IdManager& ids, const ModelDescription& model) {
    for (const ParameterRow& row : model.rows)
        ids.addParameterId(row.kind, row.id);
}

void ParameterTable::say(ISensorController& controller, const Message& message, int value) {
    if (message.isSilent())
        return;
    if (message.outlet == Message::Log || message.outlet == Message::Regular) {
        controller.ErrorPrintf(message.text, value);
    } else if (message.outlet == Message::Console || GlobalEnv::getInstance()->getPrintFlag()) {
        std::printf(message.text, value);
        std::puts("");
    }
}

void ParameterTable::keep(ISensorController& controller, int id, int value) {
    controller.m_pCurrentCache->setSensorValue(id, value);
    controller.m_pLastCache->setSensorValue(id, value);
}

int ParameterTable::set(ISensorController& controller, const ModelDescription& model, int id, int value) {
    if (model.isStatusTested && controller.m_SensorStatus != ISensorController::InitSuccess)
        return 0;
    const int ofBase = controller.ISensorController::setParameterToSensor(id, value);
    if (ofBase != -1)
        return ofBase;
    const ParameterRow* row = findRow(model, id);
    if (row == nullptr || !row->isSettable()) {
        leaveUnserved(controller, model, id);
        return model.unservedSetResult;
    }
    if (!apply(controller, model, *row, value)) {
        sensorcontrol::say(controller, row->setFailure, row->isCommand() ? "" : "set", row->name, model.failureText,
                           value);
        return 0;
    }
    waitAfter(model, *row);
    return 1;
}

int ParameterTable::get(ISensorController& controller, const ModelDescription& model, int id, int& value) {
    if (model.isStatusTested && controller.m_SensorStatus != ISensorController::InitSuccess) {
        say(controller, model.statusText, id);
        return 0;
    }
    if (model.isReadFromZero)
        value = 0;
    if (controller.ISensorController::getParameterFromSensor(id, value))
        return 1;
    const ParameterRow* row = findRow(model, id);
    if (row == nullptr || !row->isReadable()) {
        leaveUnserved(controller, model, id);
        return 0;
    }
    const int isRead = row->get.isThere()           ? row->get(controller, value)
                       : !row->read.inquiry.empty() ? read(controller, model, row->read, value)
                                                    : 1;
    if (!isRead) {
        sensorcontrol::say(controller, row->getFailure, "get", row->name, model.failureText, value);
        return 0;
    }
    if (row->factory.isKnown)
        value = row->factory.value;
    waitAfter(model, *row);
    return 1;
}

int ParameterTable::read(ISensorController& controller, const ModelDescription& model, const Reading& reading,
                         int& value) {
    const auto ask = [&](int& number) {
        const FramePattern::Frame frame = reading.inquiry.build(0);
        return model.inquire(controller, frame.data(), static_cast<int>(reading.inquiry.size()), number);
    };
    const BitField& field = reading.field;
    int number = 0;
    if (!(field.isWhole() ? ask(number) : field.shadow(controller).refill(number, ask)))
        return 0;
    value = reading.value(field.isWhole() ? number : extractBits(number, field.first, field.width));
    return 1;
}

std::string describe(const Conditions& conditions, const ModelDescription& model) {
    std::string text;
    for (const Condition& condition : conditions) {
        if (condition.kind == Condition::Always)
            continue;
        text += text.empty() ? "only " : " and ";
        if (condition.kind == Condition::WithoutInfrared) {
            text += "without infrared board";
            continue;
        }
        const ParameterRow* other = findRow(model, condition.storedId);
        text += condition.kind == Condition::WhileStored ? "while " : "unless ";
        text += other != nullptr ? other->name : std::to_string(condition.storedId);
        const char* separator = " is ";
        for (int value = 0; value < 32; ++value) {
            if ((condition.storedValues >> value & 1U) == 0)
                continue;
            text += separator + std::to_string(value);
            separator = " or ";
        }
    }
    return text;
}

int ParameterTable::factoryValue(const ModelDescription& model, int id, int& value) {
    const ParameterRow* row = findRow(model, id);
    if (row == nullptr || !row->factory.isKnown)
        return 0;
    value = row->factory.value;
    return 1;
}

int ParameterTable::apply(ISensorController& controller, const ModelDescription& model, int id, int value) {
    const ParameterRow* row = findRow(model, id);
    return row != nullptr ? apply(controller, model, *row, value) : 0;
}

int ParameterTable::apply(ISensorController& controller, const ModelDescription& model, const ParameterRow& row,
                          int value) {
    const bool isInRange = !row.isCheckedByGate() || row.accepts.contains(value);
    if (!isInRange && row.onlyWhile.isRangeAlone()) {
        refuse(controller, model, row, value);
        return 0;
    }
    bool counts = true;
    StoredValues stored{};
    for (const Condition& condition : row.onlyWhile) {
        int other = 0;
        if (condition.readsStored() && !controller.getParameter(condition.storedId, other))
            return 0;
        counts = isMet(condition, other, controller.m_nInfrared);
        if (!counts)
            break;
    }
    if (counts && !readStored(controller, row.send.storedIds(), stored))
        return 0;
    if (!isInRange && (counts || row.onlyWhile.isRangeFirst())) {
        refuse(controller, model, row, value);
        return 0;
    }
    if (!counts) {
        say(controller, row.keptText, value);
        if (recorder::isListening())
            recorder::keep(describe(row.onlyWhile, model));
        return 1;
    }
    say(controller, row.notice, value);
    const int isTaken =
        row.set.isThere() ? row.set(controller, row.value(value)) : transmit(controller, model, row, value, stored);
    if (!isTaken)
        return 0;
    if (row.remember.id != 0)
        keep(controller, row.remember.id, row.remember.value(value));
    return row.then.empty() ? 1 : resend(controller, model, row.then, value);
}

int ParameterTable::transmit(ISensorController& controller, const ModelDescription& model, const ParameterRow& row,
                             int value, std::span<const int> stored) {
    if (!row.send.empty())
        return sendFrame(controller, model, row.send, row.field, row.value(value), stored);
    return sendSteps(controller, model, row.steps, value);
}

int ParameterTable::sendSteps(ISensorController& controller, const ModelDescription& model, std::span<const Step> steps,
                              int value) {
    std::uint32_t chosen = 0;
    int readId = -1;
    int other = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Condition& condition = steps[i].onlyWhile;
        if (!steps[i].when.contains(value))
            continue;
        // Steps that go by one parameter go by one look at it: another thread may be changing it.
        if (condition.readsStored() && condition.storedId != readId) {
            if (!controller.getParameter(condition.storedId, other))
                return 0;
            readId = condition.storedId;
        }
        if (isMet(condition, other, controller.m_nInfrared))
            chosen |= 1U << i;
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step& step = steps[i];
        if ((chosen >> i & 1U) == 0)
            continue;
        int sent = value;
        if (step.of != 0 && !controller.getParameter(step.of, sent))
            return 0;
        if (!sendFrame(controller, model, step.frame, step.field, step.value(sent))) {
            say(controller, step.failure, value);
            return 0;
        }
        pause(step.pause);
    }
    return 1;
}

int ParameterTable::resend(ISensorController& controller, const ModelDescription& model, std::span<const Resend> then,
                           int value) {
    for (const Resend& resend : then) {
        if (!resend.when.contains(value))
            continue;
        std::array<int, Resend::Most> stored{};
        for (std::size_t i = 0; i < Resend::Most; ++i)
            if (resend.ids[i] != 0 && !controller.getParameter(resend.ids[i], stored[i]))
                return 0;
        for (std::size_t i = 0; i < Resend::Most; ++i)
            if (resend.ids[i] != 0 && !apply(controller, model, resend.ids[i], stored[i]))
                return 0;
    }
    return 1;
}

} // namespace sensorcontrol
