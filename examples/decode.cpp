// One record, from bytes to a text for people.
//
// Prints: Warning from ESA: Idle State
#include "event/MPUEvent.h"

#include <cstdio>

int main() {
    using namespace Pegasus;
    EmpEvLogMsg_s record{}; // as it came from the controller
    record.source = 33;
    record.eventType = 2;
    record.category = 2;
    record.eventId = 9;

    CMAPMessageHeader header;
    header.setMessageLength(64 + sizeof record);
    Avrel_memory_istream stream(&record, sizeof record);
    const MPUEvent message(header, stream);
    const std::unique_ptr<Avrel_Event> event(message.create_Avrel_Event());
    std::printf("%s from %s: %s\n", static_cast<const char*>(event->getEventType().getCString()),
                static_cast<const char*>(event->getSource().getCString()),
                static_cast<const char*>(event->getSummary().getCString()));
}
