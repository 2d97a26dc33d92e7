#include "formats/Clock.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <ctime>
#include <fmt/format.h>

namespace Pegasus::formats {

namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

struct Fields {
    std::tm date;
    std::int64_t offset; // from UTC
};

// RFC 3339 has offsets of whole minutes; those of old local times have seconds.
Fields fieldsOf(std::int64_t unixTime, bool utc) {
    const auto time = static_cast<std::time_t>(unixTime);
    Fields fields{};
    if (!utc && ::localtime_r(&time, &fields.date))
        fields.offset = fields.date.tm_gmtoff / kMinute * kMinute;
    const auto shifted = static_cast<std::time_t>(unixTime + fields.offset);
    ::gmtime_r(&shifted, &fields.date);
    return fields;
}

std::string dateAndTime(const std::tm& date, char between) {
    return fmt::format("{:04}-{:02}-{:02}{}{:02}:{:02}:{:02}", date.tm_year + 1900, date.tm_mon + 1,
                       date.tm_mday, between, date.tm_hour, date.tm_min, date.tm_sec);
}

std::string duration(std::int64_t seconds) {
    const std::int64_t length = seconds < 0 ? -seconds : seconds;
    const std::string days = length < kDay ? "" : fmt::format("{}d ", length / kDay);
    return fmt::format("{}{}{:02}:{:02}:{:02}", seconds < 0 ? "-" : "", days, length % kDay / kHour,
                       length % kHour / kMinute, length % kMinute);
}

// Takes parts off the front of a text.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}
    // So many digits, of a number that is at least `least` and at most `most`.
    bool number(std::size_t digits, int least, int most, int& to) {
        if (rest_.size() < digits || rest_[0] == '-')
            return false;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + digits, to);
        if (error != std::errc() || end != rest_.data() + digits || to < least || to > most)
            return false;
        rest_.remove_prefix(digits);
        return true;
    }
    bool any(std::string_view characters) {
        const bool found = !rest_.empty() && characters.find(rest_[0]) != characters.npos;
        rest_.remove_prefix(found);
        return found;
    }
    bool ended() const { return rest_.empty(); }

private:
    std::string_view rest_;
};

// The Unix time of a time of day in the zone of the process.
std::int64_t unixTimeOf(std::tm date, bool utc) {
    date.tm_isdst = -1;
    return utc ? ::timegm(&date) : std::mktime(&date);
}

} // namespace

std::string_view Clock::shown(std::uint32_t timestamp) {
    const std::uint32_t reference = reference_.value_or(timestamp);
    switch (options_.style) {
    case TimeStyle::Raw:
        break;
    case TimeStyle::Iso:
        return rfc3339(timestamp);
    case TimeStyle::Local:
        return shown_ = dateAndTime(fieldsOf(timestamp + *options_.epoch, false).date, ' ');
    case TimeStyle::Boot:
        return shown_ = duration(timestamp);
    case TimeStyle::Relative:
    case TimeStyle::Delta:
        return shown_ = duration(std::int64_t{timestamp} - reference);
    }
    return {};
}

std::string_view Clock::rfc3339(std::uint32_t timestamp) {
    if (!options_.epoch)
        return {};
    if (rfc3339Of_ != timestamp)
        rfc3339_ = formats::rfc3339(timestamp + *options_.epoch, options_.utc);
    rfc3339Of_ = timestamp;
    return rfc3339_;
}

std::string rfc3339(std::int64_t unixTime, bool utc) {
    const Fields fields = fieldsOf(unixTime, utc);
    const std::string date = dateAndTime(fields.date, 'T');
    if (fields.offset == 0)
        return date + "Z";
    const std::int64_t offset = fields.offset < 0 ? -fields.offset : fields.offset;
    return fmt::format("{}{}{:02}:{:02}", date, fields.offset < 0 ? '-' : '+', offset / kHour,
                       offset % kHour / kMinute);
}

std::optional<std::int64_t> unixTimeFrom(std::string_view text, bool utc) {
    Reader reader(text);
    std::tm date{};
    int offset = 0;
    if (!reader.number(4, 0, 9999, date.tm_year) || !reader.any("-") ||
        !reader.number(2, 1, 12, date.tm_mon) || !reader.any("-") ||
        !reader.number(2, 1, 31, date.tm_mday))
        return std::nullopt;
    using namespace std::chrono;
    if (!year_month_day(year(date.tm_year), month(static_cast<unsigned>(date.tm_mon)),
                        day(static_cast<unsigned>(date.tm_mday)))
             .ok())
        return std::nullopt;
    if (reader.any("Tt ")) {
        if (!reader.number(2, 0, 23, date.tm_hour) || !reader.any(":") ||
            !reader.number(2, 0, 59, date.tm_min) ||
            (reader.any(":") && !reader.number(2, 0, 60, date.tm_sec)))
            return std::nullopt;
        const bool east = reader.any("+");
        if (east || reader.any("-")) {
            int hours = 0;
            int minutes = 0;
            if (!reader.number(2, 0, 23, hours) || !reader.any(":") ||
                !reader.number(2, 0, 59, minutes))
                return std::nullopt;
            offset = (hours * 60 + minutes) * (east ? 60 : -60);
            utc = true;
        } else if (reader.any("Zz")) {
            utc = true;
        }
    }
    if (!reader.ended())
        return std::nullopt;
    date.tm_year -= 1900;
    date.tm_mon -= 1;
    return unixTimeOf(date, utc) - offset;
}

std::vector<std::pair<std::int64_t, std::int64_t>> zoneOffsets(std::int64_t first,
                                                               std::int64_t last) {
    const auto offsetAt = [](std::int64_t time) { return fieldsOf(time, false).offset; };
    std::vector<std::pair<std::int64_t, std::int64_t>> found{{first, offsetAt(first)}};
    for (std::int64_t day = first; day < last; day += kDay) {
        std::int64_t before = day;
        std::int64_t after = std::min(day + kDay, last);
        const std::int64_t offset = offsetAt(after);
        if (offset == found.back().second)
            continue;
        while (after - before > 1) {
            const std::int64_t middle = before + (after - before) / 2;
            (offsetAt(middle) == offset ? after : before) = middle;
        }
        found.emplace_back(after, offset);
    }
    return found;
}

std::int64_t dayBefore(std::int64_t unixTime, int days, bool utc) {
    std::tm date = fieldsOf(unixTime, utc).date;
    date.tm_mday -= days;
    date.tm_hour = date.tm_min = date.tm_sec = 0;
    return unixTimeOf(date, utc);
}

} // namespace Pegasus::formats
