// A frame begins with its length, all included, and ends with the low 8 bits of the sum of all before; see
// RegisterFrames.h for what stands between. Registers have a page and a number:
//     read register 0A 03:      08 01 05 01 0A 03 01 1D     ->  06 01 03 01 80 8B (80)
//     write 80 to it:           08 01 05 02 0A 03 80 9D     ->  05 01 02 01 09
//     write 27FA to 0A 0C:      09 01 06 02 0A 0C FA 27 49  ->  05 01 02 01 09
//
// Deliberate: a reply that fails is asked for again with the port as it is, and emptied only after the second try; of
// an answer nothing but length and sum is looked at.

#include "drivers/binary/IBaseIT1SenseController.h"

#include "controller/DriverServices.h"
#include "controller/Recorder.h"
#include "drivers/Exchange.h"
#include "drivers/PortBringUp.h"
#include "drivers/binary/IT1Model.h"
#include "drivers/binary/Log2.h"
#include "drivers/binary/RegisterFrames.h"
#include "drivers/binary/RegisterWire.h"
#include "host/BreltoTime.h"
#include "host/ModuleConfigure.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>

using namespace sensorcontrol;
using binary::printFrame;
using binary::reading;
using binary::writing;
using binary::writingWord;

namespace {

constexpr int Timeout = 6;
constexpr Link BlockLink{.timeout = Timeout, .framing = lengthFirst, .accepts = isSumRight};

/// What operations give in place of a reply's length.
enum Failure { ShortSendFailure = -1, ReceiveFailure = -2, SumFailure = -3, CapacityFailure = -4 };

constexpr int AcknowledgementLength = 5;
constexpr int ByteReplyLength = 6;
constexpr int WordReplyLength = 7;
constexpr int DataOffset = 4;

/// With this sensor type the newer infrared board may be there.
constexpr int TypeWithNewInfrared = 2;

constexpr int HighestMirror = 3;

struct ChromaRegister {
    const char* name;
    int address;
};
constexpr ChromaRegister ChromaRegisters[] = {{"RY1", 0x1f}, {"BY1", 0x21}, {"RY2", 0x27}, {"BY2", 0x29},
                                              {"RY3", 0x2f}, {"BY3", 0x31}, {"RY4", 0x37}, {"BY4", 0x39}};

// Shutters as the block counts them; a register holds 1024 times the binary logarithm.
constexpr int ShutterBits = 10;
constexpr int LowestMinimum = 1;
constexpr std::uint32_t MinShutters[] = {1020, 2040, 4080, 10200, 20400, 40800, 102000, 204000};
constexpr std::uint32_t FixedShutters[] = {510, 1020, 2040, 4080, 10200, 20400, 40800, 102000};
constexpr int LowMaximum = 2; ///< the one that needs the low shutter
constexpr std::uint32_t MaxShutters[] = {204, 306, 408, 510, 1020, 2040, 2448, 3060, 4080, 6120, 8160, 10200};

/// The highest maximum that goes with a minimum.
constexpr int highestMaximum(int minimum) {
    constexpr int Highest[] = {5, 6, 9, 12};
    const int index = std::max(minimum, LowestMinimum) - LowestMinimum;
    return index < static_cast<int>(std::size(Highest)) ? Highest[index] : INT_MAX;
}

/// The register for one of a list of shutters, of which the first has the number `lowest`; 0 beyond the list.
template <std::size_t Count>
constexpr int shutterRegister(const std::uint32_t (&shutters)[Count], int lowest, int number) {
    if (number < lowest || number - lowest >= static_cast<int>(Count))
        return 0;
    return binary::scaledLog2(shutters[number - lowest], ShutterBits);
}

} // namespace

int it1::transmit(ISensorController& controller, const char* frame, int length) {
    FramePattern::Frame command{};
    std::copy_n(frame, length, command.data());
    return static_cast<Block&>(controller).setParameterValue(command.data(), length);
}

int it1::inquire(ISensorController& controller, const char* frame, int length, int& number) {
    FramePattern::Frame command{};
    std::copy_n(frame, length, command.data());
    return static_cast<Block&>(controller).getParameterValue(command.data(), length, number);
}

IBaseIT1SenseController::IBaseIT1SenseController(int moduleType, const ModelDescription& model)
    : TableController(moduleType, model),
      m_DNSwitchThread(bind(this, &IBaseIT1SenseController::switchThreadBody), "DayNightSwitchThread",
                       GThread::emptyFun, GThread::emptyFun) {
    m_bDNThreadSwitch = false;
}

IBaseIT1SenseController::~IBaseIT1SenseController() { stopThreads(); }

void IBaseIT1SenseController::stopThreads() {
    // In this order: the background thread may start the other one.
    stopDNChangeThread();
    stopSwitchThread();
}

int IBaseIT1SenseController::setSensorVideoSystem(int, const VideoResolution&) { return 1; }

int IBaseIT1SenseController::initFactorySetting() { return 1; }

int IBaseIT1SenseController::initController(int, const ModuleConfigure& configure) {
    ModuleKeys keys(*this, configure);
    const PortRecipe& recipe = m_Model.port;
    std::string device;
    std::string filterPin;
    std::string lineText;
    if (!keys.parseDetail() || !keys.detail(recipe.key, device, recipe.deviceFailure))
        return 0;
    keys.optionalDetailNumber("TNF", m_nTNFEnable, "get TNF from detail failed");
    if (!keys.detailNumber("isInfrared", m_nInfrared, "get isInfrared from detail failed") ||
        !keys.detail("GPIO", filterPin, "get GPIO from detail failed") || !keys.parseParameters() ||
        !keys.parameter(recipe.key, lineText, recipe.lineFailure) || !parseFilterPin(filterPin))
        return 0;
    if (getSensorType() == TypeWithNewInfrared)
        readInfraredKeys(keys);
    readExternalLevelKey(keys);
    return openPort(*this, *m_pUARTController, recipe, device, lineText, m_nRS232Handle) ? wakeBlock() : 0;
}

void IBaseIT1SenseController::readExternalLevelKey(ModuleKeys& keys) {
    std::string text;
    if (!keys.optionalDetail("GPIOExternalLevel", text))
        return;
    const int count = parsePin(text, m_nExternalLevelGPIOGroup, m_nExternalLevelGPIOPin, m_nDayLevel);
    m_bExternalLevel = count == 3;
    if (!m_bExternalLevel)
        ErrorPrintf("parse GPIOExternalLevel param failed,nRet=%d", count);
}

int IBaseIT1SenseController::wakeBlock() {
    constexpr char Wake[] = {'a'};
    constexpr BreltoTime Settle(0, 20000);
    const auto isThere = [this](int isDone, const char* failure) {
        if (!isDone)
            ErrorPrintf("%s", failure);
        return isDone != 0;
    };

    sendRaw(line(), Wake);
    recvLeftData();
    int value = 0;
    if (!isThere(getLowShutterSetup(value), "Init Low Shutter Value failed") ||
        !isThere(getSharpness(value), "Init Low Sharpness Value failed") ||
        !isThere(refill(m_nRegister0101, 0x01, 0x01, value), "Init Day Night Failed") ||
        !isThere(getMirror(value), "Init getMirror Value failed") ||
        !isThere(getChroma(value), "Init getChroma Value failed") ||
        !isThere(base_setDayToNightTransition(0), "init base_setDayToNightTransition(0) failed") ||
        !isThere(base_setNightToDayTransition(0), "init base_setNightToDayTransition(0) failed") ||
        !isThere(sendUnanswered(reading(0x01, 0x01, 1)), "send szcommand_DNoff failed"))
        return 0;
    DriverServices::wait(*this, Settle);
    if (!isThere(sendUnanswered(writing(0x01, 0x01, 0x15)), "send szcommand_DNoff1 failed"))
        return 0;
    recvLeftData();
    return 1;
}

SerialLine IBaseIT1SenseController::line(std::span<char> reply) {
    return {*this, *m_pUARTController, m_nRS232Handle, m_ExchangeMutex, reply};
}

int IBaseIT1SenseController::baseSendCommand(char* command, int commandLength, char* result, int resultCapacity) {
    if (commandLength < 1 || resultCapacity < 1) // a port's -1 would pass for all of -1 bytes
        return ShortSendFailure;
    const recorder::LogOnly framesTellIt;
    const sensorhost::ScopedLock lock(m_ExchangeMutex);
    computeCheckSum(command, commandLength);
    const Attempt made = attempt(line({result, static_cast<std::size_t>(resultCapacity)}), BlockLink,
                                 {command, static_cast<std::size_t>(commandLength)}, resultCapacity);
    const int length = made.reply.empty() ? 0 : static_cast<unsigned char>(made.reply[0]);
    switch (made.outcome) {
    case Outcome::Done:
        return length;
    case Outcome::ShortSend:
        ErrorPrintf("p_pszSendCommandLen = %d,nSendLength=%d", commandLength, made.count);
        return ShortSendFailure;
    case Outcome::NoReply:
        ErrorPrintf("recv dataCount failed,nRecvLength=%d", made.count);
        return ReceiveFailure;
    case Outcome::Short:
        ErrorPrintf("recv data failed,nRecvLength=%d,nRecvCount=%d", made.count, length - 1);
        return ReceiveFailure;
    case Outcome::TooLong:
        std::printf("recv dataCount failed,dataCount=%d,nResult=0x%02x\n", length, static_cast<unsigned int>(length));
        return CapacityFailure;
    case Outcome::Refused:
        break;
    }
    if (length == 0) { // a frame that does not even count its first byte
        ErrorPrintf("recv data failed,nRecvLength=%d,nRecvCount=%d", 0, -1);
        return ReceiveFailure;
    }
    char computed[UCHAR_MAX + 1];
    std::ranges::copy(made.reply, computed);
    computeCheckSum(computed, length);
    ErrorPrintf("checkSum error,nExpectedCheckSum = 0x%02x,actualCheckSum=0x%02x",
                static_cast<unsigned char>(computed[length - 1]), static_cast<unsigned char>(made.reply.back()));
    return SumFailure;
}

int IBaseIT1SenseController::sendCommand(char* command, int commandLength, char* result, int resultCapacity) {
    const int first = baseSendCommand(command, commandLength, result, resultCapacity);
    if (first > 0 || DriverServices::isEnding(*this))
        return first;
    const int second = baseSendCommand(command, commandLength, result, resultCapacity);
    if (second <= 0)
        std::printf("second sendCommand failed,nCount=%d\n", second);
    return second;
}

int IBaseIT1SenseController::getParameterValue(char* command, int length, int& value) {
    char result[10] = {};
    const int count = sendCommand(command, length, result, sizeof result);
    if (count == ByteReplyLength || count == WordReplyLength) {
        value = static_cast<unsigned char>(result[DataOffset]);
        if (count == WordReplyLength)
            value += 256 * static_cast<unsigned char>(result[DataOffset + 1]);
        return 1;
    }
    std::printf("getParameterValue error,nRet = %d,command is:", count);
    printFrame({command, static_cast<std::size_t>(std::max(length, 0))});
    recvLeftData();
    return 0;
}

int IBaseIT1SenseController::setParameterValue(char* command, int length) {
    char result[10] = {};
    const int count = sendCommand(command, length, result, sizeof result);
    if (count == AcknowledgementLength)
        return 1;
    std::printf("setParameterValue error,nRet = %d,\n\tsendCommand is:", count);
    printFrame({command, static_cast<std::size_t>(std::max(length, 0))});
    recvLeftData();
    return 0;
}

void IBaseIT1SenseController::recvLeftData() {
    const sensorhost::ScopedLock lock(m_ExchangeMutex);
    drain(line(), binary::byteByByte(Timeout));
}

int IBaseIT1SenseController::send(const FramePattern& frame, int value) {
    FramePattern::Frame command = frame.build(value);
    return setParameterValue(command.data(), static_cast<int>(frame.size()));
}

int IBaseIT1SenseController::sendUnanswered(const FramePattern& frame) {
    const FramePattern::Frame command = frame.build(0);
    return sendRaw(line(), {command.data(), frame.size()}) == static_cast<int>(frame.size()) ? 1 : 0;
}

int IBaseIT1SenseController::ask(const FramePattern& frame, int& value) {
    FramePattern::Frame command = frame.build(0);
    return getParameterValue(command.data(), static_cast<int>(frame.size()), value);
}

int IBaseIT1SenseController::refill(ShadowRegister& shadow, int page, int address, int& word) {
    return shadow.refill(word, [&](int& read) { return ask(reading(page, address, 1), read); });
}

void IBaseIT1SenseController::computeCheckSum(char* buffer, int length) {
    if (length < 1)
        return;
    unsigned int sum = 0;
    for (int i = 0; i < length - 1; ++i)
        sum += static_cast<unsigned char>(buffer[i]);
    buffer[length - 1] = static_cast<char>(sum & 0xff);
}

void IBaseIT1SenseController::getHigh8Bits(int value, int& high) { high = value >> 8; }

void IBaseIT1SenseController::getLow8Bits(int value, int& low) { low = value & 0xff; }

int IBaseIT1SenseController::modifyLowFourBits(int byte, int value) { return replaceBits(byte, value, 0, 4); }

int IBaseIT1SenseController::modifyAppointedBit(int byte, int position, int value, int bits) {
    return replaceBits(byte, value, position, bits);
}

int IBaseIT1SenseController::getAppointedBit(int byte, int position, int bits) {
    return extractBits(byte, position, bits);
}

double IBaseIT1SenseController::getLog2Value(double x) { return std::log(x) / std::log(2.0); }

int IBaseIT1SenseController::getSharpness(int& value) {
    int word = 0;
    if (!refill(m_nSharpness1, 0x14, 0x02, word) || !refill(m_nSharpness2, 0x14, 0x03, word))
        return 0;
    value = 50;
    return 1;
}

int IBaseIT1SenseController::getMirror(int& value) {
    int word = 0;
    if (!refill(m_n1500Value, 0x15, 0x00, word) || word > HighestMirror)
        return 0;
    value = 0;
    return 1;
}

int IBaseIT1SenseController::getChroma(int& value) {
    for (std::size_t i = 0; i < m_nChroma.size(); ++i) {
        int word = 0;
        if (!ask(reading(0x14, ChromaRegisters[i].address, 2), word)) {
            ErrorPrintf("get getChroma%s failed", ChromaRegisters[i].name);
            return 0;
        }
        m_nChroma[i] = word;
    }
    value = 50;
    return 1;
}

int IBaseIT1SenseController::setChroma(int value) {
    // One rounding an operation, and the cut in more bits than the product can have: every machine comes to the same.
    static_assert(FLT_EVAL_METHOD == 0);
    const float scale = static_cast<float>(value + 50LL) / 100.0F;
    for (std::size_t i = 0; i < m_nChroma.size(); ++i) {
        const float scaled = static_cast<float>(m_nChroma[i]) * scale;
        const int word = static_cast<int>(static_cast<std::int64_t>(scaled) & 0xffff);
        if (!send(writingWord(0x14, ChromaRegisters[i].address), word)) {
            ErrorPrintf("set %s failed ", ChromaRegisters[i].name);
            return 0;
        }
    }
    return 1;
}

int IBaseIT1SenseController::getWhiteBalance(int& value) {
    int word = 0;
    if (!ask(reading(0x0b, 0x00, 1), word))
        return 0;
    value = word == 0 ? 1 : 2;
    return 1;
}

int IBaseIT1SenseController::getLowShutterSetup(int& value) {
    int word = 0;
    if (!refill(m_nRegister0A01, 0x0a, 0x01, word))
        return 0;
    value = getAppointedBit(word, 0, 1);
    return 1;
}

int IBaseIT1SenseController::setLowShutterSetup(int value) {
    return m_nRegister0A01.change(value, 0, 1, [this](int word) { return send(writing(0x0a, 0x01), word); });
}

int IBaseIT1SenseController::setMinShutterValue(int value) {
    int maximum = 0;
    if (!base_getMaxShutter(maximum))
        return 0;
    if (maximum > highestMaximum(value)) {
        std::puts("set MinShutterValue > MaxShutterValue!");
        return 0;
    }
    return base_setMinShutter(value);
}

int IBaseIT1SenseController::setMaxShutterValue(int value) {
    int minimum = 0;
    if (!base_getMinShutter(minimum))
        return 0;
    if (value > highestMaximum(minimum)) {
        std::puts("set MaxShutterValue < MinShutterValue!");
        return 0;
    }
    return base_setMaxShutter(value);
}

int IBaseIT1SenseController::setShutterMode(int mode) {
    int fixed = 0;
    int maximum = 0;
    int minimum = 0;
    if (mode != 0)
        return base_getFixedShutter(fixed) && base_setFixedShutter(fixed) ? 1 : 0;
    return base_getMaxShutter(maximum) && base_getMinShutter(minimum) && base_setMaxShutter(maximum) &&
                   base_setMinShutter(minimum)
               ? 1
               : 0;
}

int IBaseIT1SenseController::base_setMinShutter(int value) {
    const int word = shutterRegister(MinShutters, LowestMinimum, value);
    return word != 0 ? send(writingWord(0x0a, 0x0c), word) : 0;
}

int IBaseIT1SenseController::base_setMaxShutter(int value) {
    const int word = shutterRegister(MaxShutters, LowMaximum, value);
    return word != 0 && setLowShutterSetup(value == LowMaximum ? 1 : 0) && send(writingWord(0x0a, 0x08), word) ? 1 : 0;
}

int IBaseIT1SenseController::base_setFixedShutter(int value) {
    const int word = shutterRegister(FixedShutters, 0, value);
    return word != 0 && send(writingWord(0x0a, 0x08), word) && send(writingWord(0x0a, 0x0c), word) ? 1 : 0;
}

int IBaseIT1SenseController::base_getMinShutter(int& value) { return getParameter(it1::MinShutterId, value); }

int IBaseIT1SenseController::base_getMaxShutter(int& value) { return getParameter(it1::MaxShutterId, value); }

int IBaseIT1SenseController::base_getFixedShutter(int& value) { return getParameter(it1::FixedShutterId, value); }

int IBaseIT1SenseController::base_getShutterMode(int& mode) { return getParameter(it1::ShutterModeId, mode); }
