#pragma once

#include "simulator/CameraBlock.h"

#include <string>
#include <string_view>

namespace camerasim {

/// The block's persistent registers as text: a head line "camerasim-state 1 <model>", then "address value" in hex, one
/// register a line; # starts a comment.
std::string stateText(const CameraBlock& block);

/// Takes such a text over; registers that it does not name stay as they are. On bad text the block stays as
/// it was, `error` tells the line and the reason, and the result is false.
bool applyStateText(CameraBlock& block, std::string_view text, std::string& error);

/// Writes the state to a file, which is replaced as a whole or not at all. False with the reason on failure.
bool saveState(const CameraBlock& block, const std::string& path, std::string& error);

/// Reads the state from a file. A missing file is a failure; look first where that is normal.
bool loadState(CameraBlock& block, const std::string& path, std::string& error);

} // namespace camerasim
