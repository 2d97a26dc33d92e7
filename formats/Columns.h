// What every event has: the keys of JSON, the elements of XML, the columns of CSV.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus::formats {

// A number or a text: the other one is null.
struct Column {
    const char* name;
    const char* meaning;
    unsigned (*number)(const Avrel_Event&);
    String (*text)(Avrel_Event&);
};

// In the order in which they are written. A name once published stays.
inline constexpr Column kColumns[] = {
    {"enclosureSerialNumber", "Serial number of the enclosure", nullptr,
     [](Avrel_Event& e) { return e.getEnclosureSerialNumber(); }},
    {"controllerSerialNumber", "Serial number of the controller that logged the event", nullptr,
     [](Avrel_Event& e) { return e.getControllerSerialNumber(); }},
    {"controllerSlotID", "Slot of that controller",
     [](const Avrel_Event& e) { return e.getControllerSlotID(); }, nullptr},
    {"eventLogInstanceNumber", "Which of the controller's event logs",
     [](const Avrel_Event& e) { return e.getEventLogInstanceNumber(); }, nullptr},
    {"sequenceID", "Running number within the log",
     [](const Avrel_Event& e) { return e.getSequenceID(); }, nullptr},
    {"timestamp", "Raw firmware time", [](const Avrel_Event& e) { return e.getTimestamp(); },
     nullptr},
    {"source", "Module that wrote the record; the number of one without a name", nullptr,
     [](Avrel_Event& e) { return e.getSource(); }},
    {"category", "Category; the number of one without a name", nullptr,
     [](Avrel_Event& e) { return e.getCategory(); }},
    {"eventType",
     "Severity: 1 informational, 2 warning, 3 error; 101, 102, 103 the same for engineering; 0 "
     "unknown",
     [](const Avrel_Event& e) { return e.getEventType(); }, nullptr},
    {"eventTypeText", "The same as text", nullptr, [](Avrel_Event& e) { return e.getEventType(); }},
    {"eventID", "Title", nullptr, [](Avrel_Event& e) { return e.getEventID(); }},
    {"summary", "One line", nullptr, [](Avrel_Event& e) { return e.getSummary(); }},
    {"body", "Elements, text or a dump", nullptr, [](Avrel_Event& e) { return e.getBody(); }},
};

// The version of the formats that programs read. It grows when a column goes or changes its
// meaning, not when one is added.
inline constexpr unsigned kFormatVersion = 1;

} // namespace Pegasus::formats
