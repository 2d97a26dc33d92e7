#include "event/StringFormat.h"

#include "event/Digits.h"

namespace Pegasus {

namespace {

unsigned long long join(unsigned int high, unsigned int low) {
    return static_cast<unsigned long long>(high) << 32 | low;
}

} // namespace

std::string StringFormat::hex(unsigned int high, unsigned int low, unsigned int width) {
    return hex(join(high, low), width);
}

std::string StringFormat::hex(unsigned long long value, unsigned int width) {
    char digits[mpu::kHexRoom];
    const char* end = mpu::putHex(digits, value, 0, mpu::Case::Lower);
    const std::size_t count = static_cast<std::size_t>(end - digits);
    std::string text("0x");
    if (count < width)
        text.append(width - count, '0');
    return text.append(digits, count);
}

std::string StringFormat::decimal(unsigned int high, unsigned int low) {
    return decimal(join(high, low));
}

std::string StringFormat::decimal(unsigned long long value) {
    char digits[mpu::kDecimalRoom];
    return std::string(digits, mpu::putDecimal(digits, std::uint64_t{value}));
}

} // namespace Pegasus
