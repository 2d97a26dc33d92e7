// The formats in which events are written.
#pragma once

#include "event/Avrel_Event.h"
#include "event/TextWriter.h"

#include <memory>
#include <span>

namespace Pegasus::tool {

// Holds scratch memory: one for each thread.
class Printer {
public:
    virtual ~Printer() = default;
    virtual void begin(mpu::TextWriter&) {} // in front of all events
    virtual void print(Avrel_Event& event, mpu::TextWriter& out) = 0;
    virtual void end(mpu::TextWriter&) {} // behind all events
};

struct Format {
    const char* name;
    std::unique_ptr<Printer> (*make)();
};

std::unique_ptr<Printer> makeTextPrinter();
std::unique_ptr<Printer> makeLinePrinter();
std::unique_ptr<Printer> makeJsonPrinter();

inline constexpr Format kFormats[] = {
    {"text", makeTextPrinter},
    {"line", makeLinePrinter},
    {"json", makeJsonPrinter},
};

} // namespace Pegasus::tool
