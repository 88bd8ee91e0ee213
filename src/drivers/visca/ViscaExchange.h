#pragma once

#include "drivers/Exchange.h"

/// How the family's settings are exchanged, for members that do it in their own way.
namespace sensorcontrol::visca {

inline constexpr int AcknowledgementLength = 3;

/// An acknowledgement or a completion somewhere in the three bytes.
bool isAccepted(std::span<const char> command, std::span<const char> reply);

/// A reply that would not do is told with its three bytes.
void reportSetting(const SerialLine& line, const ExchangeRule& rule, int number, std::span<const char> command,
                   const Attempt& failed);

inline constexpr Link SettingLink{.timeout = 4, .accepts = isAccepted};

} // namespace sensorcontrol::visca
