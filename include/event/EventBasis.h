// What the texts of a decoded event rest on.
#pragma once

#include <cstdint>
#include <string_view>

namespace Pegasus {

// How we know what a place in a record means. The order is that of trust: the weakest is the last.
enum class Provenance : std::uint8_t {
    Documented,
    Inferred, // just this room is left between known fields, or a sister structure has it there
    Assumed,  // settled by us
};

constexpr std::string_view nameOf(Provenance provenance) {
    return provenance == Provenance::Assumed    ? "assumed"
           : provenance == Provenance::Inferred ? "inferred"
                                                : "documented";
}

struct EventBasis {
    // The weakest of all statements in title, summary and body.
    Provenance layout = Provenance::Documented;
    // Bytes that the layouts want and the record lacks: what they say of these was read from zeros.
    std::uint32_t missingBytes = 0;
    // Payload bytes that no statement comes from.
    std::uint32_t unreadBytes = 0;
    // The decoder doesn't know the event's codes: what is said is what all its events have.
    bool isUnknown = false;
};

} // namespace Pegasus
