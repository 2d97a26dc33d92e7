// The formats in which events are written.
#pragma once

#include "formats/DecodedEvent.h"

#include <memory>

namespace Pegasus::formats {

// Holds scratch memory: one per thread.
class Printer {
public:
    virtual ~Printer() = default;
    virtual void begin(mpu::TextWriter&) {} // before all events
    virtual void print(const DecodedEvent& event, mpu::TextWriter& out) = 0;
    virtual void gap(mpu::TextWriter&) {} // between events with others between them
    virtual void end(mpu::TextWriter&) {} // after all events
};

struct PrintOptions {
    bool fields = false; // also list the body's elements individually
    bool colour = false; // for a terminal
};

struct Format {
    const char* name;
    const char* description;
    std::unique_ptr<Printer> (*make)(const PrintOptions& options);
    bool hasFields; // heeds PrintOptions::fields
};

std::unique_ptr<Printer> makeTextPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeBriefPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeLinePrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeJsonPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeXmlPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeCsvPrinter(const PrintOptions& options);

inline constexpr Format kFormats[] = {
    {"text", "an indented block per event", makeTextPrinter, false},
    {"brief", "time, severity, source, title and summary on one line", makeBriefPrinter, false},
    {"line", "all of an event on one line", makeLinePrinter, false},
    {"json", "a JSON object per line", makeJsonPrinter, true},
    {"xml", "an XML document", makeXmlPrinter, true},
    {"csv", "CSV with a header line", makeCsvPrinter, true},
};

} // namespace Pegasus::formats
