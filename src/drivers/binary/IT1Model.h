#pragma once

#include "drivers/ModelDescription.h"
#include "drivers/binary/IBaseIT1SenseController.h"

#include <span>

/// What the models of the family have in common beside the controller.
namespace sensorcontrol::it1 {

using Block = IBaseIT1SenseController;

inline constexpr int MirrorId = 3;
inline constexpr int DayToNightId = 5;
inline constexpr int NightToDayId = 6;
inline constexpr int MinShutterId = 8;
inline constexpr int MaxShutterId = 11;
inline constexpr int FixedShutterId = 18;
inline constexpr int ShutterModeId = 19;

/// The shadows for the rows of the bits in them.
struct Shadows {
    static Block& of(ISensorController& controller) { return static_cast<Block&>(controller); }

    static ShadowRegister& of0A01(ISensorController& controller) { return of(controller).m_nRegister0A01; }
    static ShadowRegister& of1402(ISensorController& controller) { return of(controller).m_nSharpness1; }
    static ShadowRegister& of1403(ISensorController& controller) { return of(controller).m_nSharpness2; }
    static ShadowRegister& of1500(ISensorController& controller) { return of(controller).m_n1500Value; }
};

int transmit(ISensorController& controller, const char* frame, int length);
int inquire(ISensorController& controller, const char* frame, int length, int& number);

/// A block's model; one differs from another in its rows.
constexpr ModelDescription describe(const char* className, std::span<const ParameterRow> rows, int focusModeId = -1) {
    return {.className = className,
            .rows = rows,
            .version = 7,
            .subVersion = 2,
            .mirrorId = MirrorId,
            .focusModeId = focusModeId,
            .port = {.key = "RS232", .lineTextFailure = "parse RS232 param failed,nRet=%d"},
            .wait = 100000,
            .failureText = nullptr,
            .transmit = transmit,
            .inquire = inquire};
}

} // namespace sensorcontrol::it1
