// Captures for others to see.
#pragma once

#include "tools/mpuevent/Merge.h"

#include <map>
#include <string>
#include <unordered_map>

namespace Pegasus::tool {

// Replaces the serial numbers of enclosures and controllers, each one always by the same: in the
// headers, and where they occur as text in payloads, which keep their lengths.
class Anonymiser {
public:
    // Keeps the message: a later one may be the first to tell a serial number that is in it.
    void take(const Message& message);
    // Hands over what it was made.
    void finish(const TakeMessage& take);

private:
    // The number of a serial number that is in a payload, as it is searched for.
    static constexpr std::size_t kShortest = 4;

    void learn(std::string_view serial, const char* prefix);
    void replaceField(std::uint8_t* field) const;
    void replaceText(std::span<std::uint8_t> payload) const;

    Spool spool_;
    std::map<std::string, std::string, std::less<>> replacements_;
    // By their first bytes: which lengths there are, a bit each.
    std::unordered_map<std::uint32_t, std::uint64_t> lengths_;
};

} // namespace Pegasus::tool
