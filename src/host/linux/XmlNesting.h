#pragma once

#include <string_view>

namespace sensorhost {

/// Whether no element of an XML text lies deeper than `limit`. A text that is broken in a way that hides its nesting
/// is none that passes. For parsers that descend by recursion and would run out of stack.
bool isNestingWithin(std::string_view text, int limit);

} // namespace sensorhost
