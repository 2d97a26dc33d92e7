// Severities, and how they look on a terminal.
#pragma once

#include <string_view>

namespace Pegasus::formats {

inline constexpr std::string_view kSeverities[] = {"unknown", "informational", "warning", "error"};

// Index of the severity of an event type: customer events have the types 1 to 3, engineering events
// 101 to 103.
constexpr unsigned severityOf(unsigned eventType) {
    const unsigned severity = eventType > 100 ? eventType - 100 : eventType;
    return severity <= 3 ? severity : 0;
}

// By the index of the severity: unknown, informational, warning, error.
inline constexpr unsigned kSyslogSeverities[] = {5, 6, 4, 3}; // notice, info, warning, error
inline constexpr unsigned kOtlpSeverities[] = {0, 9, 13, 17}; // unspecified, INFO, WARN, ERROR
inline constexpr std::string_view kColours[] = {"\x1B[35m", "\x1B[32m", "\x1B[33m", "\x1B[31m"};
inline constexpr std::string_view kPlain = "\x1B[0m";

} // namespace Pegasus::formats
