#pragma once

#include "simulator/CameraBlock.h"

#include <string>
#include <string_view>

namespace camerasim {

/// The block's persistent registers as text: a head line "camerasim-state 1 <model>", then "address value" in hex, one
/// register a line; # starts a comment.
std::string stateText(const CameraBlock& p_Block);

/// Takes such a text over; registers that it does not name stay as they are. On bad text the block stays as
/// it was, p_strError tells the line and the reason, and the result is false.
bool applyStateText(CameraBlock& p_Block, std::string_view p_strText, std::string& p_strError);

/// Writes the state to a file, which is replaced as a whole or not at all. False with the reason on failure.
bool saveState(const CameraBlock& p_Block, const std::string& p_strPath, std::string& p_strError);

/// Reads the state from a file. A missing file is a failure; look first where that is normal.
bool loadState(CameraBlock& p_Block, const std::string& p_strPath, std::string& p_strError);

} // namespace camerasim
