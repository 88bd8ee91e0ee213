#include "drivers/ParameterTable.h"

#include "controller/Recorder.h"
#include "host/BreltoTime.h"

#include <algorithm>
#include <cstdio>

namespace sensorcontrol {

namespace {

const ParameterRow* findRow(const ModelDescription& model, int id) {
    const auto row = std::ranges::lower_bound(model.rows, id, {}, &ParameterRow::id);
    return row != model.rows.end() && row->id == id ? &*row : nullptr;
}

void logFailure(ISensorController& controller, const ModelDescription& model, const ParameterRow& row,
                const char* prefix, const char* irregular, int value) {
    if (irregular != nullptr) {
        if (*irregular != '\0')
            ParameterTable::log(controller, irregular, value);
        return;
    }
    if (model.failureText == nullptr)
        return;
    char text[100];
    std::snprintf(text, sizeof text, "%s%s%s", prefix, row.name, model.failureText);
    ParameterTable::log(controller, text, value);
}

void leaveUnserved(ISensorController& controller, const ModelDescription& model, int id) {
    recorder::leaveUnserved();
    if (model.unservedText != nullptr)
        ParameterTable::log(controller, model.unservedText, id);
}

bool isSettable(const ParameterRow& row) { return !row.send.empty() || row.set != nullptr || row.command != nullptr; }

void waitAfter(const ModelDescription& model) {
    if (model.waitMicroseconds > 0)
        BreltoTime::wait(BreltoTime(0, model.waitMicroseconds));
}

int keep(const ModelDescription& model, const ParameterRow& row) {
    if (recorder::isListening())
        recorder::keep(describe(row.onlyWhile, model));
    return 1;
}

} // namespace

void ParameterTable::registerIds(IdManager& ids, const ModelDescription& model) {
    for (const ParameterRow& row : model.rows)
        ids.addParameterId(row.kind, row.id);
}

void ParameterTable::log(ISensorController& controller, const char* text, int value) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    controller.ErrorPrintf(text, value);
#pragma GCC diagnostic pop
}

int ParameterTable::set(ISensorController& controller, const ModelDescription& model, int id, int value) {
    if (controller.m_SensorStatus != ISensorController::InitSuccess)
        return 0;
    const int ofBase = controller.ISensorController::setParameterToSensor(id, value);
    if (ofBase != -1)
        return ofBase;
    const ParameterRow* row = findRow(model, id);
    if (row == nullptr || !isSettable(*row)) {
        leaveUnserved(controller, model, id);
        return model.unservedSetResult;
    }
    if (!apply(controller, model, *row, value)) {
        logFailure(controller, model, *row, row->command != nullptr ? "" : "set", row->setFailure, value);
        return 0;
    }
    waitAfter(model);
    return 1;
}

int ParameterTable::get(ISensorController& controller, const ModelDescription& model, int id, int& value) {
    if (controller.m_SensorStatus != ISensorController::InitSuccess)
        return 0;
    if (model.isReadFromZero)
        value = 0;
    if (controller.ISensorController::getParameterFromSensor(id, value))
        return 1;
    const ParameterRow* row = findRow(model, id);
    if (row == nullptr || (row->get == nullptr && !row->factory.isKnown)) {
        leaveUnserved(controller, model, id);
        return 0;
    }
    if (row->get == nullptr) {
        value = row->factory.value;
    } else if (!row->get(controller, value)) {
        logFailure(controller, model, *row, "get", row->getFailure, value);
        return 0;
    }
    waitAfter(model);
    return 1;
}

std::string describe(const Condition& condition, const ModelDescription& model) {
    if (condition.kind == Condition::WithoutInfrared)
        return "only without infrared board";
    if (condition.kind != Condition::WhileStored)
        return {};
    const ParameterRow* other = findRow(model, condition.storedId);
    std::string text = "only while ";
    text += other != nullptr ? other->name : std::to_string(condition.storedId);
    const char* separator = " is ";
    for (int value = 0; value < 32; ++value) {
        if ((condition.storedValues >> value & 1U) == 0)
            continue;
        text += separator + std::to_string(value);
        separator = " or ";
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
    int stored = 0;
    if (row.onlyWhile.kind == Condition::WhileStored && !controller.getParameter(row.onlyWhile.storedId, stored))
        return 0;
    const bool isChecked = !row.send.empty() || row.refusal != nullptr;
    if (isChecked && !row.accepts.contains(value)) {
        if (row.refusal != nullptr)
            log(controller, row.refusal, value);
        recorder::refuse("not among the accepted values");
        return 0;
    }
    switch (row.onlyWhile.kind) {
    case Condition::WhileStored:
        if (stored < 0 || stored > 31 || (row.onlyWhile.storedValues >> stored & 1U) == 0)
            return keep(model, row);
        break;
    case Condition::WithoutInfrared:
        if (controller.m_nInfrared != 0)
            return keep(model, row);
        break;
    default:
        break;
    }
    if (row.command != nullptr)
        return row.command(controller);
    if (row.set != nullptr)
        return row.set(controller, row.value(value));
    const FramePattern::Frame frame = row.send.build(row.value(value));
    return model.transmit(controller, frame.data(), static_cast<int>(row.send.size()));
}

} // namespace sensorcontrol
