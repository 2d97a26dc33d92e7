#include "decoders/common/Unknown.h"

#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::mpu {

void writePayload(TextWriter& body, const Record& record) {
    const Untrusted payload = record.payload().bytes(0, record.payloadLength());
    body.reserve(2 * payload.size() + sizeof "<Hex></Hex>"); // grows at most once
    body.literal("<Hex>").hexBytes(payload).literal("</Hex>");
}

void decodeUnknown(const Record& record, Draft& draft, const UnknownEvent& event) {
    traceUnknown(record, event.traceSource, event.traceLine, event.trace, record.eventId());
    draft.summary.literal(event.summary);
    writePayload(draft.body, record);
}

void noteUnknown(const Record& record) {
    if (Footprint* const footprint = record.view().footprint())
        footprint->noteUnknown();
}

void traceUnknown(const Record& record, const char* source, int line, const char* what,
                  std::uint32_t code, unsigned digits) {
    noteUnknown(record);
    if (ProviderTraceServices::ptsGetTraceSuppressForPid() != 0)
        return;
    LineWriter number;
    if (digits != 0)
        number.hexLower(code, digits);
    else
        number.decimal(code);
    ProviderTraceServices::ptsTrace(source, line, {what, number.view()});
}

} // namespace Pegasus::mpu
