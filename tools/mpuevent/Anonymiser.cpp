#include "tools/mpuevent/Anonymiser.h"

#include "event/BigEndian.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fmt/format.h>

namespace Pegasus::tool {

namespace {

constexpr std::size_t kField = sizeof(EmpEvLogMsg_s::enclosureSerialNumber);

std::string_view serialIn(const void* field) {
    const char* const text = static_cast<const char*>(field);
    return {text, ::strnlen(text, kField)};
}

} // namespace

void Anonymiser::take(const Message& message) {
    learn(serialIn(message.record.data()), "ENC");
    learn(serialIn(message.record.data() + kField), "CTL");
    spool_.add(message);
}

void Anonymiser::learn(std::string_view serial, const char* prefix) {
    if (serial.empty() || replacements_.find(serial) != replacements_.end())
        return;
    // "ENC0001"; more zeros where it is longer, fewer letters where it is shorter.
    const std::string number = fmt::format("{:04}", replacements_.size() + 1);
    std::string made = prefix;
    made.resize(std::max(made.size(), serial.size() - std::min(number.size(), serial.size())), '0');
    made += number;
    made.erase(0, made.size() - std::max(number.size(), serial.size()));
    replacements_.emplace(serial, std::move(made));
    if (serial.size() >= kShortest)
        lengths_[mpu::loadBig<std::uint32_t>(serial.data())] |= std::uint64_t{1}
                                                                << (serial.size() - 1);
}

void Anonymiser::finish(const TakeMessage& take) {
    spool_.flush();
    const std::unique_ptr<MessageStream> all = spool_.read(0, spool_.end());
    std::vector<std::uint8_t> record;
    for (Message message; all->next(message);) {
        record.assign(message.record.begin(), message.record.end());
        replaceField(record.data());
        replaceField(record.data() + kField);
        replaceText(std::span(record).subspan(sizeof(EmpEvLogMsg_s)));
        message.record = record;
        if (!take(message))
            return;
    }
}

// What is after the NUL may be the rest of a longer one.
void Anonymiser::replaceField(std::uint8_t* field) const {
    const auto found = replacements_.find(serialIn(field));
    std::memset(field, 0, kField);
    if (found != replacements_.end())
        std::copy(found->second.begin(), found->second.end(), field);
}

void Anonymiser::replaceText(std::span<std::uint8_t> payload) const {
    const auto* const text = reinterpret_cast<const char*>(payload.data());
    for (std::size_t at = 0; at + kShortest <= payload.size();) {
        const auto begun = lengths_.find(mpu::loadBig<std::uint32_t>(text + at));
        std::size_t replaced = 0;
        for (std::uint64_t lengths = begun == lengths_.end() ? 0 : begun->second;
             lengths != 0 && replaced == 0;) { // the longest first
            const auto length = static_cast<std::size_t>(std::bit_width(lengths));
            lengths &= ~(std::uint64_t{1} << (length - 1));
            if (length > payload.size() - at)
                continue;
            const auto found = replacements_.find(std::string_view(text + at, length));
            if (found == replacements_.end())
                continue;
            std::memcpy(&payload[at], found->second.data() + found->second.size() - length, length);
            replaced = length;
        }
        at += std::max<std::size_t>(replaced, 1);
    }
}

} // namespace Pegasus::tool
