// The formats in which events are written.
#pragma once

#include "event/Avrel_Event.h"
#include "event/TextWriter.h"

#include <memory>
#include <span>

namespace Pegasus::formats {

// Holds scratch memory: one for each thread.
class Printer {
public:
    virtual ~Printer() = default;
    virtual void begin(mpu::TextWriter&) {} // in front of all events
    virtual void print(Avrel_Event& event, mpu::TextWriter& out) = 0;
    virtual void end(mpu::TextWriter&) {} // behind all events
};

struct Style {
    bool fields = false; // the elements of the body too, one by one
    bool colour = false; // for a terminal
};

struct Format {
    const char* name;
    std::unique_ptr<Printer> (*make)(const Style& style);
    bool fields; // knows them
};

std::unique_ptr<Printer> makeTextPrinter(const Style& style);
std::unique_ptr<Printer> makeBriefPrinter(const Style& style);
std::unique_ptr<Printer> makeLinePrinter(const Style& style);
std::unique_ptr<Printer> makeJsonPrinter(const Style& style);
std::unique_ptr<Printer> makeXmlPrinter(const Style& style);
std::unique_ptr<Printer> makeCsvPrinter(const Style& style);

inline constexpr Format kFormats[] = {
    {"text", makeTextPrinter, false}, {"brief", makeBriefPrinter, false},
    {"line", makeLinePrinter, false}, {"json", makeJsonPrinter, true},
    {"xml", makeXmlPrinter, true},    {"csv", makeCsvPrinter, true},
};

} // namespace Pegasus::formats
