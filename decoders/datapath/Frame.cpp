#include "decoders/datapath/Frame.h"

#include "event/TextWriter.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::mpu::datapath {

std::string_view assertFile(RecordView payload) {
    constexpr std::size_t kLongest = 127;
    return payload.text(kDataAt, std::min<std::size_t>(payload.u32(kLengthAt), kLongest));
}

void traceLength(const char* source, int line, const char* what, RecordView payload) {
    if (ProviderTraceServices::ptsGetTraceSuppressForPid() != 0)
        return;
    LineWriter length;
    length.hexLower(payload.u32(kLengthAt), 1);
    ProviderTraceServices::ptsTrace(source, line, {what, length.view()});
}

} // namespace Pegasus::mpu::datapath
