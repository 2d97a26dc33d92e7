// Numbers as text.
#pragma once

#include "event/Export.h"

#include <string>

namespace Pegasus {

class MPUEVENT_EXPORT StringFormat {
public:
    // "0x" and lower-case digits, zero-padded to at least `width` digits and never cut. A
    // 64-bit value may come as its two halves.
    static std::string hex(unsigned int high, unsigned int low, unsigned int width);
    static std::string hex(unsigned long long value, unsigned int width);
    static std::string decimal(unsigned int high, unsigned int low);
    static std::string decimal(unsigned long long value);
};

} // namespace Pegasus
