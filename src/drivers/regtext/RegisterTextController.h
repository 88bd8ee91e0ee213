#pragma once

#include "drivers/PortController.h"

#include <string>

namespace sensorcontrol {

namespace regtext {
struct VideoSystems;
}

/// What all controllers of register-text blocks share, on top of either base class. A model adds its table, the
/// operations that a row cannot say, and what its start has beside the family's.
///
/// A thread of its own, "getDN", asks the block every second whether it is day; it runs from a successful
/// initController on, so that any exchange below may have to wait for one of that thread's.
template <class Base>
class SENSORCONTROL_API RegisterTextController : public PortController<Base> {
public:
    ~RegisterTextController() override;

    int NotifySensorInitComplate() override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// The prefix and `value` in at least `width` hexadecimal digits, of which the last `width` are upper-case. At most
    /// 19 characters; what is longer is cut.
    static std::string assembleString(const std::string& prefix, unsigned int value, int width);
    /// The hexadecimal number that a text begins with, cut to what an int holds; 0 without one.
    static int ascToHex(const std::string& text);

    /// One write: sends the command and wants it back, at most three times. The command that stores the settings has
    /// no answer. Blocks at worst for every try's timeout and drain. 1 or 0.
    int sendData(const std::string& command);
    /// One read: as many characters come back as were sent, and all but the last `valueChars` (0 to 8) are the
    /// command's; those are the value. At most three times. On failure `value` stays as it was. 1 or 0.
    int recvData(const std::string& command, int valueChars, int& value);

    /// Sends a row's frame: what a model's description has as `transmit`.
    static int transmit(ISensorController& controller, const char* frame, int length);

    /// One pass of the "getDN" thread; ends with its sleep. Always 0.
    virtual int getDNbody();

protected:
    /// The model must outlive the controller.
    RegisterTextController(int moduleType, const ModelDescription& model);

    /// Ends both threads, as a concrete destructor does before anything goes. Safe to repeat. Waits for no more than
    /// one receive of each.
    SENSORCONTROL_LOCAL void stopThreads();

    // The start in pieces, for models with keys or steps of their own in between.

    /// The first keys, up to `isInfrared`.
    SENSORCONTROL_LOCAL int beginStart(ModuleKeys& keys, std::string& deviceName);
    SENSORCONTROL_LOCAL int startStatusThread();

    /// Asks a register for day or night and sleeps: a second, or three without an answer to go by.
    SENSORCONTROL_LOCAL void pollStatus(const char* command, int night, int day, const char* failure);

    /// Looks the video system up, asks what is in force, and on a difference writes it and waits until the block is
    /// back.
    SENSORCONTROL_LOCAL int changeVideoSystem(const regtext::VideoSystems& systems, int videoSystem,
                                              const VideoResolution& resolution, int restartSeconds);

private:
    SafePointer<GThread> m_pDNThread;
};

} // namespace sensorcontrol
