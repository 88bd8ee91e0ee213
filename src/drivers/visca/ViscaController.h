#pragma once

#include "drivers/PortController.h"

#include <span>

namespace sensorcontrol {

struct Step;
struct ViscaHabits;
struct ViscaVideoSystem;

/// What all controllers of VISCA-family blocks share, on top of either base class. A model adds its description, the
/// operations that a table row cannot say, and its start.
template <class Base>
class SENSORCONTROL_API ViscaController : public PortController<Base> {
public:
    /// One run of the auto focus.
    int OnePushTrigger();

    /// Takes any reply of that length; what the bytes mean is the caller's.
    int getParameterValue(const char* command, int length, char* reply, int replyLength) override;
    /// Wants an acknowledgement or a completion within three bytes.
    int setParameterValue(const char* command, int length) override;

    int enterAutoMode() override;
    int turnPictureToDay() override;
    int turnPictureToNight() override;
    int getDNStatusFromSensor(int& status) override;

protected:
    ViscaController(int moduleType, const ModelDescription& model, const ViscaHabits& habits);

    /// The head of every start: module keys, port, line, drain. `generation` receives the key of that name if it is
    /// not null.
    SENSORCONTROL_LOCAL int bringUpPort(const ModuleConfigure& configure, int* generation = nullptr);

    /// The pieces of that head for a model that keeps what it reads.
    SENSORCONTROL_LOCAL void announceStart(const ModuleConfigure& configure);
    /// Always 1; a missing key is logged and counts as 0.
    SENSORCONTROL_LOCAL int readGeneration(ModuleKeys& keys, int& generation);

    /// Asks for the video system, and on a difference writes it and restarts the block: blocks for 20 seconds then.
    SENSORCONTROL_LOCAL int changeVideoSystem(const ViscaVideoSystem& rules, int videoSystem);
    /// Asks for the video system in force: 1 and the byte, or 0.
    SENSORCONTROL_LOCAL int askVideoSystem(int& current);
    /// Restarts the block by a frame that it does not answer: blocks for 20 seconds.
    SENSORCONTROL_LOCAL int restartUnanswered(const FramePattern& frame);
    /// The last step of a restart: waits until the block is back and empties the port.
    SENSORCONTROL_LOCAL void waitForRestart();

    /// Sends an inquiry whose reply nobody reads: the block takes it as the end of the start.
    SENSORCONTROL_LOCAL int notifyByInquiry();

    /// One inquiry with a reply of `Length` bytes into a cleared buffer.
    template <std::size_t Length>
    int inquire(const FramePattern& frame, char (&reply)[Length]) {
        return inquire(frame, std::span<char>(reply));
    }
    SENSORCONTROL_LOCAL int inquire(const FramePattern& frame, std::span<char> reply);

    const ViscaHabits& m_Habits;

private:
    SENSORCONTROL_LOCAL void reportStatus(const char (&reply)[4]);
    SENSORCONTROL_LOCAL int turn(std::span<const Step> steps, const FramePattern& infraredBoardFrame);
};

/// One with a lens that is moved step by step.
template <class Base>
class SENSORCONTROL_API ViscaLensController : public ViscaController<Base> {
public:
    int IrisUp() override;
    int IrisDown() override;
    int FocusUp();
    int FocusDown();

protected:
    using ViscaController<Base>::ViscaController;
};

} // namespace sensorcontrol
