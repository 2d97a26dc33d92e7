// Titles of the management decoders' events.
#pragma once

#include "event/FixedString.h"

namespace Pegasus::mpu {

// An event whose title depends on its severity.
struct TitledEvent {
    std::uint16_t code;
    FixedString<50> error;
    FixedString<50> warning;
    FixedString<50> other;
    std::uint8_t kind; // of record, as the decoder numbers them

    std::string_view title(std::uint8_t severity) const {
        return severity == 3 ? error : severity == 2 ? warning : other;
    }
};

// The event with the code, or null.
template <class Event, std::size_t Count>
const Event* findEvent(const Event (&events)[Count], unsigned int code) {
    for (const Event& event : events)
        if (event.code == code)
            return &event;
    return nullptr;
}

} // namespace Pegasus::mpu
