#pragma once

#include "simulator/BlockScene.h"
#include "simulator/BlockSettings.h"
#include "simulator/WireFrame.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camerasim {

/// One register of a block as it stands.
struct RegisterState {
    std::uint32_t address = 0;
    std::string name;
    std::uint32_t value = 0;
    /// Kept over a restart and in a saved state.
    bool persistent = true;
};

/// A simulated camera block, seen from its serial line: it takes bytes, keeps registers and makes replies.
///
/// It reads no clock: every call that needs the time is given it, in microseconds. It has no lock: InProcessLine and
/// PtyServer guard it, and their withBlock gives safe access.
class CameraBlock : public BlockScene {
public:
    explicit CameraBlock(const BlockSettings& settings);

    /// Short name of the model, for example "cmd8100"; it heads a saved state.
    virtual std::string_view modelName() const = 0;

    /// Adds bytes from the host and returns how many it took; nextFrame then makes room for the rest. Bytes that come
    /// while the block boots or is off are taken and lost.
    std::size_t feed(std::span<const std::uint8_t> bytes, std::int64_t now);
    /// Cuts the next whole frame out of what was fed and records it; false if there is none.
    bool nextFrame(std::int64_t now);
    /// The frame that nextFrame cut last.
    const WireFrame& frame() const { return m_Frame; }
    /// Carries that frame out; replies are appended in the order of their times.
    void execute(std::int64_t now, std::vector<WireFrame>& replies);
    /// Answers that frame with the protocol's refusal and changes nothing.
    void refuse(std::int64_t now, std::vector<WireFrame>& replies);
    /// feed, and execute of every frame, for use without a line.
    std::vector<WireFrame> exchange(std::span<const std::uint8_t> bytes, std::int64_t now);
    /// Position of a reply's check byte, or of the byte that stands in for one where the protocol has none.
    virtual std::size_t checkByteIndex(std::span<const std::uint8_t> reply) const = 0;

    /// Value of a register; nothing if there is no such address or name.
    virtual std::optional<std::uint32_t> registerValue(std::uint32_t address) const = 0;
    std::optional<std::uint32_t> registerValue(std::string_view name) const;
    /// Sets a register as if by an inner hand, without range test; false if there is no such address.
    virtual bool setRegister(std::uint32_t address, std::uint32_t value) = 0;
    /// Every register, in address order.
    virtual std::vector<RegisterState> registers() const = 0;

    /// Restarts the block: silent for the boot time, unanswered commands forgotten. With loss of state every register
    /// returns to its factory value, otherwise only the volatile ones do.
    void reboot(std::int64_t now, bool loseState);
    /// Switches the block off, or on again with a boot.
    void pressPowerButton(std::int64_t now);
    bool isUp(std::int64_t now) const { return m_bPower && now >= m_nUpAt; }
    /// Counts restarts and power changes; a line drops what the block had not sent by then.
    unsigned powerChanges() const { return m_nPowerChanges; }

    /// The frames received, oldest first; the last 4096 of them are kept.
    std::vector<WireFrame> receivedFrames() const;
    std::uint64_t receivedFrameCount() const { return m_nReceived; }
    /// Bytes that belonged to no frame, or came while the block was not up.
    std::uint64_t droppedBytes() const { return m_nDropped; }
    /// Forgets the frames received and the dropped count.
    void clearReceived();
    /// Human meaning of a frame of the host, for example "brightness 07" or "inquiry day/night". Never empty.
    std::string describe(std::span<const std::uint8_t> frame) const;
    /// The same for a frame of the block, or a part of one; `command` is what the host sent last, maybe nothing.
    virtual std::string describeReply(std::span<const std::uint8_t> reply,
                                      std::span<const std::uint8_t> command) const = 0;
    /// Length of the frame at the head of bytes of the host; of the run that belongs to no frame; or all of them, if
    /// the frame has no end.
    std::size_t frameLength(std::span<const std::uint8_t> bytes) const;
    /// Whether a whole frame of the host stands at the head of the bytes.
    bool startsWithFrame(std::span<const std::uint8_t> bytes) const;
    /// As frameLength, for bytes (at least one) of the block.
    virtual std::size_t replyLength(std::span<const std::uint8_t> bytes) const = 0;
    /// Whether bytes of unknown origin look like the block's rather than the host's.
    virtual bool isReply(std::span<const std::uint8_t> bytes) const = 0;

    BlockSettings& settings() { return m_Settings; }
    const BlockSettings& settings() const { return m_Settings; }

protected:
    /// What stands at the head of the received bytes: `length` bytes that are a frame or garbage, or an unfinished
    /// frame.
    struct Cut {
        enum class Kind { Unfinished, Frame, Garbage } kind = Kind::Unfinished;
        std::size_t length = 0;
    };

    /// What a host sends to the pan and tilt units that may share a line, six characters without an end. Every block
    /// lets it pass as a frame that it has nothing to say to: cut, executeFrame, refuseFrame and describeFrame never
    /// see it.
    static constexpr std::string_view PanTiltStop = "MENUON";

    /// Judges the received bytes (never empty). Garbage is dropped and the rest judged again, so that answering one
    /// garbage byte at a time resynchronises on any later frame.
    virtual Cut cut(std::span<const std::uint8_t> bytes) const = 0;
    virtual void executeFrame(std::span<const std::uint8_t> frame, std::int64_t now) = 0;
    virtual void refuseFrame(std::span<const std::uint8_t> frame) = 0;
    virtual std::string describeFrame(std::span<const std::uint8_t> frame) const = 0;
    /// Registers after a start: all of them with `loseState`, otherwise the volatile ones.
    virtual void resetRegisters(bool loseState) = 0;
    /// Leaves the line silent for so long, for a restart that is not the whole block's.
    void goSilent(std::int64_t now, std::int64_t duration);

    /// For executeFrame and refuseFrame: adds a reply, due the reaction time and `extraDelay` after the command.
    void reply(std::span<const std::uint8_t> bytes, std::int64_t extraDelay = 0);

private:
    Cut judge(std::span<const std::uint8_t> bytes) const;
    void dropHead(std::size_t count);

    BlockSettings m_Settings;
    WireFrame m_Input;
    WireFrame m_Frame;
    std::vector<WireFrame>* m_pReplies = nullptr;
    std::int64_t m_nReplyBase = 0;
    std::int64_t m_nLastByte = 0;
    std::int64_t m_nUpAt = 0;
    bool m_bPower = true;
    unsigned m_nPowerChanges = 0;
    std::vector<WireFrame> m_Log;
    std::uint64_t m_nReceived = 0;
    std::uint64_t m_nDropped = 0;
};

} // namespace camerasim
