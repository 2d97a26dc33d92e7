// The counts of many events, for people and for programs.
#pragma once

#include "event/TextWriter.h"
#include "formats/Statistics.h"

namespace Pegasus::formats {

struct SummaryOptions {
    bool colour = false; // for a terminal
    TimeOptions time{};
};

struct SummaryFormat {
    const char* name;
    const char* description;
    // `faults`: damaged places in what the events came from.
    void (*write)(const Statistics& all, std::uint64_t faults, const SummaryOptions& options,
                  mpu::TextWriter& out);
};

void writeTextSummary(const Statistics& all, std::uint64_t faults, const SummaryOptions& options,
                      mpu::TextWriter& out);
void writeJsonSummary(const Statistics& all, std::uint64_t faults, const SummaryOptions& options,
                      mpu::TextWriter& out);

inline constexpr SummaryFormat kSummaryFormats[] = {
    {"text", "tables", writeTextSummary},
    {"json", "a JSON object", writeJsonSummary},
};

} // namespace Pegasus::formats
