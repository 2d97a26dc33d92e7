#include "event/Names.h"

namespace Pegasus::mpu {

char* NameTable::put(char* out, std::uint64_t code) const {
    std::string_view name = find(code);
    if (name.empty()) {
        switch (fallback) {
        case Fallback::Number:
            return putSigned(out, static_cast<std::int32_t>(code));
        case Fallback::Decimal:
            return putDecimal(out, static_cast<std::uint32_t>(code));
        case Fallback::Unknown:
            out = putDecimal(putText(out, "Unknown ("), code);
            *out++ = ')';
            return out;
        case Fallback::Last:
            name = at(count - 1u);
        }
    }
    return putText(out, name);
}

} // namespace Pegasus::mpu
