// Counts of events for Prometheus.
#pragma once

#include "formats/Objects.h"

namespace Pegasus::formats {

// By severity and module, and by severity and kind of object: at most some thousand numbers,
// whatever the events say. Wants events that were decoded with DecodeOptions::fieldBasis.
class Metrics {
public:
    Metrics();
    void add(const DecodedEvent& event);
    // Damaged places in what the events come from.
    void addFaults(std::uint64_t count) { faults_ += count; }
    // In the text format.
    void write(mpu::TextWriter& out) const;

private:
    // Parts of controllers and enclosures: every event has those.
    static constexpr std::size_t kKinds = ControllerKind;

    ObjectFinder finder_;
    std::map<std::string, SeverityCounts, std::less<>> modules_;
    std::array<SeverityCounts, kKinds> kinds_{};
    std::uint64_t faults_ = 0;
};

} // namespace Pegasus::formats
