// What of an event goes into which CIM property; docs/provider.md has it as a table.
#pragma once

#include "provider/EventRing.h"
#include "provider/Settings.h"

#include <string_view>
#include <variant>

namespace Pegasus::provider {

// A CIM datetime in its 25 characters.
struct DateTime {
    std::string text;
    bool operator==(const DateTime&) const = default;
};

struct Property {
    const char* name;
    std::variant<String, DateTime, std::uint16_t, std::uint32_t, std::uint64_t> value;
};

// What a property is no part of is left out: it is NULL then.
using Properties = std::vector<Property>;

inline constexpr char kLogInstanceID[] = "MPUEvent:Log";

std::string instanceIDOf(const Entry& entry); // "MPUEvent:" and 16 hexadecimal digits
std::optional<std::uint64_t> entryIDOf(std::string_view instanceID);

Properties logEntry(const Entry& entry, const Settings& settings);
Properties alert(const Entry& entry, const Settings& settings);

// How the reading of the spool goes.
struct SpoolState {
    std::uint64_t faults = 0; // since the start
    std::string lastFault;
};
Properties recordLog(std::size_t entries, const SpoolState& state, const Settings& settings);

// `text` with U+FFFD for every character that XML 1.0 does not have.
String forXml(const String& text);

} // namespace Pegasus::provider
