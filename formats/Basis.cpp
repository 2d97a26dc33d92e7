#include "formats/Basis.h"

namespace Pegasus::formats {

void putBytes(mpu::TextWriter& out, const char* sign, std::uint32_t count, const char* what) {
    out.literal(sign).decimal(count).literal(count == 1 ? " byte " : " bytes ").literal(what);
}

void putDoubts(mpu::TextWriter& out, const DecodedEvent& event, std::string_view before,
               std::string_view after) {
    if (event.layout == nameOf(Provenance::Assumed))
        out.literal(before).literal("~ layout assumed").literal(after);
    if (event.missingBytes != 0) {
        putBytes(out.literal(before), "! ", event.missingBytes, "short");
        out.literal(after);
    }
}

std::string_view putPayload(mpu::TextWriter& out, const DecodedEvent& event) {
    out.hexBytes({reinterpret_cast<const char*>(event.payload.data()), event.payload.size()});
    return out.view();
}

} // namespace Pegasus::formats
