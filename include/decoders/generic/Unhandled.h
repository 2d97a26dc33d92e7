// Decoders of the modules whose records have no decoding of their own: named and dumped.
#pragma once

#include "event/Avrel_Event.h"

// Summary "Unhandled Event by <module>", body "<Hex>payload</Hex>"; every record is traced. The
// function gives a fixed sample text; nothing in the library calls it.
#define MPUEVENT_UNHANDLED(MODULE)                                                                 \
    class MPUEVENT_EXPORT MODULE##_Event : public Avrel_Event {                                    \
    public:                                                                                        \
        MODULE##_Event(const EmpEvLogMsg_s* record, int length);                                   \
        ~MODULE##_Event() override;                                                                \
    };                                                                                             \
    MPUEVENT_EXPORT String get_##MODULE##_such_and_such_event_body(const EmpEvLogMsg_s* record);
