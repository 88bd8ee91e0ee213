#pragma once

#include "controller/ISensorController.h"

#include <span>

namespace sensorcontrol {

class FramePattern;
struct ExchangeRule;
struct ViscaModel;
struct ViscaVideoSystem;

/// What all controllers of VISCA-family blocks share, on top of either base class. A model adds its description, the
/// operations that a table row cannot say, and its start.
template <class Base>
class SENSORCONTROL_API ViscaController : public Base {
public:
    ~ViscaController() override;

    int IrisUp() override;
    int IrisDown() override;
    int FocusUp();
    int FocusDown();
    /// One run of the auto focus.
    int OnePushTrigger();

    int getParameterFromSensor(int id, int& value) override;
    int setParameterToSensor(int id, int value) override;
    /// Takes any reply of that length; what the bytes mean is the caller's.
    int getParameterValue(const char* command, int length, char* reply, int replyLength) override;
    /// Wants an acknowledgement or a completion within three bytes.
    int setParameterValue(const char* command, int length) override;

    int enterAutoMode() override;
    int turnPictureToDay() override;
    int turnPictureToNight() override;
    int getDNStatusFromSensor(int& status) override;

protected:
    ViscaController(int moduleType, const ViscaModel& model);

    /// The head of every start: module keys, port, line, drain. `generation` receives the key of that name if it is
    /// not null.
    int bringUpPort(const ModuleConfigure& configure, int* generation);

    /// Asks for the video system, and on a difference writes it and restarts the block: blocks for 20 seconds then.
    int changeVideoSystem(const ViscaVideoSystem& rules, int videoSystem);

    /// Sends an inquiry whose reply nobody reads: the block takes it as the end of the start.
    int notifyByInquiry();

    int send(const FramePattern& frame, int value = 0);
    /// Sends without lock, acknowledgement or retry. The bytes that went out.
    int sendRaw(const FramePattern& frame);
    /// The setter of another row, for what one setting sends again.
    int apply(int id, int value);

    const ViscaModel& m_Model;

private:
    int turn(std::span<const FramePattern> frames, const FramePattern& infraredBoardFrame);
    void drain();
    int runExchange(const ExchangeRule& rule, const char* command, int length, int replyLength, char* reply);
};

} // namespace sensorcontrol
