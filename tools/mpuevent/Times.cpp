#include "tools/mpuevent/Times.h"

#include "tools/mpuevent/Choices.h"
#include "tools/mpuevent/Integer.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fmt/format.h>

namespace Pegasus::tool {

namespace {

struct StyleRow {
    const char* name;
    const char* description;
    TimeStyle style;
    bool isDate;
    bool isRelative;
};
constexpr StyleRow kStyles[] = {
    {"iso", "2009-11-10T12:00:00Z", TimeStyle::Iso, true, false},
    {"local", "2009-11-10 12:00:00, in the zone of --tz or of this machine", TimeStyle::Local, true,
     false},
    {"raw", "the number", TimeStyle::Raw, false, false},
    {"relative", "since the first event shown", TimeStyle::Relative, false, true},
    {"delta", "since the event shown before", TimeStyle::Delta, false, true},
};

// "+01:00" as the C library wants it, where the sign says what to add to get UTC; empty for what is
// not an offset.
std::string zoneOfOffset(const std::string& text) {
    if (text.size() != 6 || (text[0] != '+' && text[0] != '-') ||
        !unixTimeFrom("2000-01-01T00:00" + text, true))
        return {};
    return fmt::format("UTC{}{}", text[0] == '+' ? '-' : '+', text.substr(1));
}

bool isZoneName(const std::string& name) {
    const char* const folder = std::getenv("TZDIR");
    std::error_code error;
    return !name.empty() && name[0] != '/' && name.find("..") == name.npos &&
           std::filesystem::is_regular_file(
               std::filesystem::path(folder ? folder : "/usr/share/zoneinfo") / name, error);
}

void setZone(const std::string& name) {
    const std::string zone = isZoneName(name) ? name : zoneOfOffset(name);
    if (zone.empty())
        throw CLI::ValidationError(
            "--tz", fmt::format("\"{}\" is neither a time zone that this system knows (such as "
                                "Europe/Berlin) nor an offset (such as +01:00)",
                                name));
    ::setenv("TZ", zone.c_str(), 1);
    ::tzset();
}

// The time stamps reach 136 years further, and years have four digits.
constexpr std::int64_t k9800 = 247090953600;

void setEpoch(const std::string& value, TimeOptions& times) {
    times.style = value == "boot" ? TimeStyle::Boot : TimeStyle::Iso;
    if (value == "boot")
        return;
    times.epoch = value == "unix" ? 0 : unixTimeFrom(value, times.utc);
    if (!times.epoch || *times.epoch > k9800)
        throw CLI::ValidationError(
            "--epoch", fmt::format("\"{}\" is none of unix, boot, and a date such as 2009-11-10 or "
                                   "2009-11-10T12:00:00Z",
                                   value));
}

} // namespace

void addTimeOptions(CLI::App& app, TimeOptions& times, TimeUse use) {
    const auto add = [&](const char* name, const char* type, auto take,
                         const std::string& description) {
        return app.add_option_function<std::string>(name, take, description)
            ->type_name(type)
            ->group("Time");
    };
    const auto takeZone = [&times](const std::string& value) {
        setZone(value);
        times.utc = false;
    };
    add("--tz", "ZONE", takeZone,
        "The time zone of dates, shown and typed: a name such as Europe/Berlin, or an offset such "
        "as +01:00; without it UTC");
    add(
        "--epoch", "unix|DATE|boot", [&times](const std::string& value) { setEpoch(value, times); },
        "What the time stamps count: seconds since 1970 (unix), since a date such as 2009-11-10 or "
        "2009-11-10T12:00:00Z, or since the controller booted. Adds \"time\" (RFC 3339) to JSON, "
        "XML and CSV, boot excepted; their \"timestamp\" remains the number");
    if (use == TimeUse::Filter)
        return;
    std::vector<std::string> names;
    std::string described;
    for (const StyleRow& row : kStyles)
        if (use == TimeUse::ShowEach || !row.isRelative) {
            names.emplace_back(row.name);
            described +=
                fmt::format("{} {}: {}", described.empty() ? "." : ";", row.name, row.description);
        }
    const auto takeStyle = [&times](const std::string& value) {
        const StyleRow& row = rowOf(kStyles, value);
        if (row.isDate && !times.epoch)
            throw CLI::ValidationError(
                "--time", fmt::format("{} needs to know when the time stamps were 0: add --epoch "
                                      "unix, or --epoch and that date",
                                      value));
        times.style = row.style;
    };
    add("--time", "STYLE", takeStyle,
        "How people see times; with an epoch iso, or the time since boot, without one raw" +
            described +
            (use == TimeUse::ShowEach ? ". The last two need no epoch, and one thread" : ""))
        ->check(CLI::IsMember(names));
}

std::optional<std::uint64_t> durationFrom(std::string_view text) {
    std::uint64_t unit = 1;
    for (const auto& [letter, length] : {std::pair('s', 1), {'m', 60}, {'h', 3600}, {'d', 86400}})
        if (text.ends_with(letter)) {
            unit = static_cast<std::uint64_t>(length);
            text.remove_suffix(1);
            break;
        }
    const std::optional<Integer> count = Integer::from(text);
    if (!count || count->negative || count->magnitude > UINT32_MAX)
        return std::nullopt;
    return count->magnitude * unit;
}

std::optional<std::int64_t> momentFrom(std::string_view text, const TimeOptions& times) {
    const bool utc = times.utc && times.style != TimeStyle::Local;
    const std::int64_t now = std::time(nullptr);
    if (text == "today" || text == "yesterday")
        return dayBefore(now, text == "today" ? 0 : 1, utc);
    if (!text.starts_with('-'))
        return unixTimeFrom(text, utc);
    const std::optional<std::uint64_t> before = durationFrom(text.substr(1));
    return before ? std::optional(now - static_cast<std::int64_t>(*before)) : std::nullopt;
}

} // namespace Pegasus::tool
