// What the numbers of time stamps stand for, and how people see them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Pegasus::formats {

enum class TimeStyle : std::uint8_t {
    Raw,      // the number
    Iso,      // RFC 3339: 2009-11-10T12:00:00Z
    Local,    // 2009-11-10 12:00:00
    Boot,     // since the number was 0: 3d 04:05:06
    Relative, // since the first event: 00:05:00
    Delta,    // since the event before: -00:05:00
};

// The numbers are taken for seconds.
struct TimeOptions {
    TimeStyle style = TimeStyle::Raw;
    std::optional<std::int64_t> epoch; // Unix time at which the number was 0
    bool utc = true;                   // RFC 3339 in UTC, else in the zone of the process
};

// Shows times. Holds scratch memory: one per thread.
class Clock {
public:
    explicit Clock(const TimeOptions& options = {}) : options_(options) {}

    // Both texts live until a call with another time.
    // As people see it, empty for the number alone.
    std::string_view shown(std::uint32_t timestamp);
    // The same, and the number where that is what people see.
    std::string text(std::uint32_t timestamp) {
        const std::string_view found = shown(timestamp);
        return found.empty() ? std::to_string(timestamp) : std::string(found);
    }
    // As RFC 3339, empty without an epoch.
    std::string_view rfc3339(std::uint32_t timestamp);
    // The event of this time is shown: others are relative to it.
    void advance(std::uint32_t timestamp) {
        if (!reference_ || options_.style == TimeStyle::Delta)
            reference_ = timestamp;
    }

private:
    TimeOptions options_;
    std::optional<std::uint32_t> reference_; // time of the first event, or the one before
    std::string shown_;
    std::string rfc3339_;
    std::optional<std::uint32_t> rfc3339Of_;
};

// "2009-11-10T12:00:00Z"; in the zone of the process with its offset.
std::string rfc3339(std::int64_t unixTime, bool utc);

// The Unix time of a date with or without a time of day, after "T" or a blank: RFC 3339 or a part
// of that. Without an offset it is in UTC or in the zone of the process. Nothing for other texts.
std::optional<std::int64_t> unixTimeFrom(std::string_view text, bool utc);
// What the zone of the process adds to UTC, in seconds, with the Unix times between the two from
// which on it does; the first of them is `first`.
std::vector<std::pair<std::int64_t, std::int64_t>> zoneOffsets(std::int64_t first,
                                                               std::int64_t last);
// Of the midnight at which the day began that was so many days before this moment's.
std::int64_t dayBefore(std::int64_t unixTime, int days, bool utc);

} // namespace Pegasus::formats
