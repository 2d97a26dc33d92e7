// The formats in which events are written.
#pragma once

#include "formats/Columns.h"

#include <memory>
#include <optional>
#include <string>

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

// Of lines for people.
class LinesPrinter : public Printer {
public:
    void gap(mpu::TextWriter& out) override { out.literal("--\n"); } // as grep does
};

struct PrintOptions {
    bool fields = false;                 // also list the body's elements individually
    bool raw = false;                    // also the payload in hexadecimal
    bool colour = false;                 // for a terminal
    std::optional<std::int64_t> epoch{}; // Unix time of time stamp 0; with it events have `time`
    bool origin = false;                 // also where an event comes from
    // Fields of the event and elements of its body to show, where not those that a format has by
    // itself.
    std::vector<std::string> columns{};
};

// Whether a column is among those that a format has by itself.
inline bool isShown(const Column& column, const PrintOptions& options) {
    return column.extra == Extra::None ||
           (column.extra == Extra::Time ? options.epoch.has_value() : options.origin);
}

// "title: summary", printable, on one line.
void putHeadline(mpu::TextWriter& out, const DecodedEvent& event);

struct Format {
    const char* name;
    const char* description;
    std::unique_ptr<Printer> (*make)(const PrintOptions& options);
    bool hasFields;  // heeds PrintOptions::fields
    bool hasColumns; // heeds PrintOptions::columns
};

std::unique_ptr<Printer> makeTextPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeBriefPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeLinePrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeJsonPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeXmlPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeCsvPrinter(const PrintOptions& options);
std::unique_ptr<Printer> makeOtlpPrinter(const PrintOptions& options);

inline constexpr Format kFormats[] = {
    {"text", "an indented block per event", makeTextPrinter, false, false},
    {"brief", "time, sequence number, controller, severity, source, title and summary on one line",
     makeBriefPrinter, false, true},
    {"line", "all of an event on one line", makeLinePrinter, false, false},
    {"json", "a JSON object per line", makeJsonPrinter, true, false},
    {"xml", "an XML document", makeXmlPrinter, true, false},
    {"csv", "CSV with a header line", makeCsvPrinter, true, true},
    {"otlp", "an OpenTelemetry export request in OTLP/JSON per line", makeOtlpPrinter, true, false},
};

} // namespace Pegasus::formats
