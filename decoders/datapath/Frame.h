// Where the frame's words lie (Records.h), and the tables of what an event of a class means.
#pragma once

#include "decoders/datapath/Records.h"
#include "event/FixedString.h"
#include "event/RecordView.h"

#include <array>
#include <iterator>

namespace Pegasus::mpu::datapath {

inline constexpr unsigned kClassAt = 0;
inline constexpr unsigned kCodeAt = 4;
inline constexpr unsigned kLineAt = 12;
inline constexpr unsigned kLengthAt = 16;
inline constexpr unsigned kDataAt = 20;
static_assert(sizeof(Frame) == kDataAt);

// No record has a longer payload, whatever a length in it says.
inline constexpr std::size_t kMaxData = 0xFFFF;

// The file name in the data area of an assert: a text of at most 127 characters.
std::string_view assertFile(RecordView payload);

// Traces `what` and the length of the data area in hexadecimal.
void traceLength(const char* source, int line, const char* what, RecordView payload);

// What an event means: one row for each code of a class, in the order of the classes. `Dump` says
// what the data area holds.
template <class Dump, std::size_t Longest>
struct EventCode {
    std::uint16_t eventClass;
    std::uint16_t code;
    FixedString<Longest> text;
    Dump dump;
};

// Stands for all codes of its class that no other row has; the last row of the class.
inline constexpr std::uint16_t kAnyCode = 0xFFFF;

// Where the rows of each class begin, and one more for the end.
template <const auto& Codes, std::size_t Classes>
inline constexpr auto kClassStarts = [] {
    constexpr bool wellFormed = [] {
        for (std::size_t i = 0; i < std::size(Codes); ++i) {
            if (i > 0 && Codes[i].eventClass < Codes[i - 1].eventClass)
                return false;
            for (std::size_t j = i + 1; j < std::size(Codes); ++j)
                if (Codes[i].eventClass == Codes[j].eventClass &&
                    (Codes[i].code == Codes[j].code || Codes[i].code == kAnyCode))
                    return false;
        }
        return Codes[std::size(Codes) - 1].eventClass < Classes;
    }();
    static_assert(wellFormed, "rows by class, each code once, the catch-all last");
    std::array<std::uint8_t, Classes + 1> starts{};
    for (std::size_t i = 0, at = 0; i <= Classes; ++i) {
        while (at < std::size(Codes) && Codes[at].eventClass < i)
            ++at;
        starts[i] = static_cast<std::uint8_t>(at);
    }
    static_assert(std::size(Codes) <= 0xFF);
    return starts;
}();

// Null when the class doesn't list the code. `eventClass` is below `Classes`.
template <const auto& Codes, std::size_t Classes>
const auto* findCode(std::size_t eventClass, std::uint32_t code) {
    const auto* row = Codes + kClassStarts<Codes, Classes>[eventClass];
    const auto* end = Codes + kClassStarts<Codes, Classes>[eventClass + 1];
    while (row != end && row->code != code && row->code != kAnyCode)
        ++row;
    return row != end ? row : nullptr;
}

} // namespace Pegasus::mpu::datapath
