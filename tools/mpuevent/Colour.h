// Severities on a terminal.
#pragma once

#include <string_view>

namespace Pegasus::tool {

// By the index of the severity: unknown, informational, warning, error.
inline constexpr std::string_view kColours[] = {"\x1B[35m", "\x1B[32m", "\x1B[33m", "\x1B[31m"};
inline constexpr std::string_view kPlain = "\x1B[0m";

} // namespace Pegasus::tool
