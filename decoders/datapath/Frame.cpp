#include "decoders/datapath/Datapath_Layouts.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::mpu::datapath {

std::size_t leftOf(const Record& record, const RecordView& data) {
    const RecordView payload = record.payload();
    const RecordView area = payload.subview(kDataAt);
    const std::size_t end = std::min<std::size_t>(payload.u32(kLengthAt), area.size());
    const std::size_t at = area.size() - data.size();
    return end > at ? end - at : 0;
}

Untrusted assertFile(const Record& record) {
    constexpr std::size_t kLongest = 127;
    const RecordView payload = record.payload();
    return payload.text(kDataAt, std::min<std::size_t>(payload.u32(kLengthAt), kLongest));
}

void putFileSummary(Draft& draft, const Record& record, const RecordView&) {
    draft.summary.untrusted(assertFile(record));
}

void traceLength(const char* source, int line, const char* what, const RecordView& payload) {
    if (ProviderTraceServices::ptsGetTraceSuppressForPid() != 0)
        return;
    LineWriter length;
    length.hexLower(payload.u32(kLengthAt), 1);
    ProviderTraceServices::ptsTrace(source, line, {what, length.view()});
}

} // namespace Pegasus::mpu::datapath
