#include "decoders/common/Unknown.h"

#include "event/TextWriter.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::mpu {

void assignHexBody(String& to, const EmpEvLogMsg_s* record) {
    const std::string_view payload(reinterpret_cast<const char*>(record + 1),
                                   record->evStructLength);
    StackWriter<1024> body;                                  // beside that of the decoder
    body.reserve(2 * payload.size() + sizeof "<Hex></Hex>"); // grows at most once
    body.put("<Hex>").hexBytes(payload).put("</Hex>");
    body.assignTo(to);
}

void traceUnknown(const char* source, int line, const char* what, const EmpEvLogMsg_s* record) {
    if (ProviderTraceServices::ptsGetTraceSuppressForPid() != 0)
        return;
    LineWriter id;
    id.decimal(record->eventId);
    ProviderTraceServices::ptsTrace(source, line, {what, id.view()});
}

} // namespace Pegasus::mpu
