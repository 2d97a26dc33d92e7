#include "formats/Basis.h"

#include <algorithm>

namespace Pegasus::formats {

bool saysUnknown(const DecodedEvent& event) {
    const auto says = [](std::string_view text, std::string_view word) {
        return std::search(text.begin(), text.end(), word.begin(), word.end(),
                           [](char a, char b) { return (a | 0x20) == b; }) != text.end();
    };
    return says(event.eventID, "unknown") || says(event.summary, "unknown") ||
           says(event.summary, "unhandled");
}

void putBytes(mpu::TextWriter& out, const char* sign, std::uint32_t count, const char* what) {
    out.literal(sign).decimal(count).literal(count == 1 ? " byte " : " bytes ").literal(what);
}

void putDoubts(mpu::TextWriter& out, const DecodedEvent& event, std::string_view before,
               std::string_view after) {
    if (event.isUnknown && !saysUnknown(event))
        out.literal(before).literal("? unknown code").literal(after);
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
