#pragma once

#include "drivers/visca/ConsolePrints.h"
#include "drivers/visca/SonyEHController.h"

/// The EH6300 camera block. No module id creates it; its exchanges ask once, and want one of two acknowledgements.
class SENSORCONTROL_API SONYEH6300SenseController : public sensorcontrol::SonyEHController<ISensorController> {
public:
    SONYEH6300SenseController();
    ~SONYEH6300SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    int getParameterValue(const char* command, int length, char* reply, int replyLength) override;
    int setParameterValue(const char* command, int length) override;

protected:
    void printInterSync(const char (&reply)[5]) const override;
    void printVideoSystem(const char (&reply)[5]) const override;
};

namespace EH6300_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace EH6300_TOOL
