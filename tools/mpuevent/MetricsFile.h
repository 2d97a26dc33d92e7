// Counts of events in a file, for Prometheus.
#pragma once

#include "formats/Metrics.h"
#include "tools/mpuevent/Output.h"

#include <chrono>
#include <string>

namespace CLI {
class App;
}

namespace Pegasus::tool {

class MetricsFile {
public:
    // No path: nothing is counted. Throws when there is a file that is none of ours, or can't be
    // read.
    explicit MetricsFile(std::string path);

    void add(const DecodedEvent& event);
    void addFaults(std::uint64_t count);
    // Whether events are to be decoded with DecodeOptions::fieldBasis.
    bool counts() const { return !path_.empty(); }
    // Replaces the file when counts have changed and a second has gone by. The first failure is
    // reported.
    void store() { storeFrom(next_); }
    // Replaces it at once.
    Status finish() {
        storeFrom({});
        return status_;
    }

private:
    using Clock = std::chrono::steady_clock;
    void storeFrom(Clock::time_point begin);

    const std::string path_;
    Metrics metrics_;
    bool changed_ = true;
    Clock::time_point next_;
    Status status_ = kFine;
};

void addMetrics(CLI::App& app, std::string& path);

} // namespace Pegasus::tool
