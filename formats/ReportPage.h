// Events as a self-contained HTML page.
#pragma once

#include "formats/Objects.h"
#include "formats/ReportChunk.h"

#include <string>
#include <utility>
#include <vector>

namespace Pegasus::formats {

// What the page says about its events besides what they say themselves.
struct ReportFacts {
    std::string program;
    std::string made;                                         // when
    std::vector<std::pair<std::string, std::uint64_t>> files; // name and bytes
    std::uint64_t moreFiles = 0;
    std::vector<std::string> remarks; // on the inputs, their damage among them
    std::uint64_t moreRemarks = 0;
    std::uint64_t faults = 0;
    TimeOptions times;
    std::string filters;       // of the command line
    std::uint64_t leftOut = 0; // events that did not pass them, as far as they were read
};

// Writes the events as they come, a chunk at a time; the page's script shows them. What is kept
// does not grow with their number, but for what Objects keeps of up to 65,536 objects.
class ReportPage {
public:
    void begin(mpu::TextWriter& out);
    void add(const DecodedEvent& event, const Readings& readings, bool isPlain,
             mpu::TextWriter& out);
    void end(const ReportFacts& facts, mpu::TextWriter& out);

    std::uint64_t events() const { return events_; }

private:
    void putTimes(const TimeOptions& times, mpu::TextWriter& json) const;
    void putObjects(mpu::TextWriter& json) const;

    ReportChunk chunk_;
    Objects objects_;
    std::uint64_t events_ = 0;
    std::uint32_t first_ = UINT32_MAX; // of their times
    std::uint32_t last_ = 0;
};

} // namespace Pegasus::formats
