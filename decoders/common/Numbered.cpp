#include "decoders/common/Numbered.h"

namespace Pegasus::mpu {

[[gnu::noinline]] TextWriter& numbered(TextWriter& out, const char* before, std::uint32_t number,
                                       const char* after) {
    return out.literal(before).decimal(number).literal(after);
}

} // namespace Pegasus::mpu
