// What a decoder makes of a record.
#pragma once

#include "event/TextWriter.h"

namespace Pegasus::mpu {

// An event under construction: three texts of 8 bits.
struct Draft {
    explicit Draft(Sanitize body_ = Sanitize::Yes) : body(body_) {}

    // For the next record, as constructed without arguments.
    void clear() {
        title.clear();
        isTitled = false;
        summary.clear();
        summary.setSanitize(Sanitize::No);
        body.clear();
        body.setSanitize(Sanitize::Yes);
    }

    Footprint footprint;   // of the record, if that has it
    LineWriter title;      // when empty, the event's number is the title
    bool isTitled = false; // unless this says that the empty one is
    LineWriter summary;
    BodyWriter body;
};

} // namespace Pegasus::mpu
