// Counts over many events, in little memory however many there are.
#pragma once

#include "formats/DecodedEvent.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Pegasus::formats {

// The smallest and the largest of some numbers.
struct Range {
    std::uint32_t first = UINT32_MAX;
    std::uint32_t last = 0;

    void add(std::uint32_t value) {
        first = value < first ? value : first;
        last = value > last ? value : last;
    }
    void add(const Range& other) {
        first = other.first < first ? other.first : first;
        last = other.last > last ? other.last : last;
    }
};

using SeverityCounts = std::array<std::uint64_t, 4>; // by index of the severity

// Events over time. Keeps at most 4096 moments; when there are more, they become coarser.
class TimeLine {
public:
    void add(std::uint32_t time, unsigned severity);

    struct Part {
        std::uint64_t events = 0;
        Range time;
    };
    struct Axis {
        Part shown;
        Part before; // what is left out at its two ends
        Part after;
    };
    // What to show, so that few events with strange times don't squeeze all others: the times of
    // all events but the outliers. The core are the events between the 1st and the 99th percentile;
    // with 10 events or more it leaves out at least one at each end. An outlier is outside of the
    // core and further from it than the core is long, and than 86,400: a day, in seconds.
    Axis axis() const;
    // The time from first to last in `count` equal buckets; events outside are not counted.
    std::vector<SeverityCounts> buckets(std::size_t count, const Range& time) const;

private:
    struct Moment {
        SeverityCounts counts{};
        Range time;

        std::uint64_t events() const { return counts[0] + counts[1] + counts[2] + counts[3]; }
    };
    std::map<std::uint32_t, Moment> moments_; // by the time's upper bits
    unsigned shift_ = 0;
};

struct Statistics {
    struct Source {
        std::uint64_t count = 0;
        // Events of them.
        std::uint64_t assumed = 0; // rest on an assumed layout
        std::uint64_t shortOf = 0; // lack bytes
        std::uint64_t unread = 0;  // have bytes that nothing read
    };
    struct Title {
        std::string source;
        std::string text;
        unsigned severity; // of the worst one
        std::uint64_t count;
        Range time;
    };

    void add(const DecodedEvent& event);
    // Sources and titles, the frequent ones first.
    std::vector<std::pair<std::string, Source>> bySource() const;
    std::vector<Title> byTitle() const;

    std::uint64_t events = 0;
    Range time;
    Range sequence;
    SeverityCounts severities{};
    std::uint64_t otherTitles = 0; // events whose titles came when there were too many
    TimeLine timeLine;

private:
    std::map<std::string, Source> sources_;
    std::map<std::pair<std::string, std::string>, Title> titles_;
};

} // namespace Pegasus::formats
