// A decoded event whose body grows entry by entry.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

class MPUEVENT_EXPORT AvrelEvent : public Avrel_Event {
public:
    AvrelEvent(const EmpEvLogMsg_s* record, unsigned int length);
    ~AvrelEvent() override;

    // Appends "<tag>value</tag>" to the body, the value made by printf rules. A backslash that ends
    // the tag or the value, with no backslash before it, becomes "." so that it can't escape the
    // tag after it in later processing; in the tag that changes the caller's text.
    virtual void addEntry(char* tag, char* format, ...) __attribute__((format(printf, 3, 4)));
    // Appends `text` (UTF-8; invalid bytes become "?") as it is.
    virtual void appendBody(char* text);

private:
    MPUEVENT_LOCAL void reserve(int capacity);

    int bodyLength_ = 0;   // characters appended so far
    int bodyCapacity_ = 0; // characters reserved so far
};

} // namespace Pegasus
