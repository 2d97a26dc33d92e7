// What every decoder does with an event it doesn't know.
#pragma once

#include "event/Draft.h"
#include "event/Record.h"

namespace Pegasus::mpu {

// "<Hex>" and the evStructLength bytes of the payload in upper-case digits, "</Hex>".
void writePayload(TextWriter& body, const Record& record);

struct UnknownEvent {
    const char* traceSource; // of the trace line, that says `trace` and the event id in decimal
    int traceLine;
    const char* trace;
    std::string_view summary;
};
// Traces, and leaves a draft with the summary and the payload; the title stays the event's number.
void decodeUnknown(const Record& record, Draft& draft, const UnknownEvent& event);

// Notes that no table has the event's codes.
[[gnu::cold]] void noteUnknown(const Record& record);
// The same; traces `what` and the code, in decimal or in so many hexadecimal digits.
[[gnu::cold]] void traceUnknown(const Record& record, const char* source, int line,
                                const char* what, std::uint32_t code, unsigned digits = 0);

} // namespace Pegasus::mpu
