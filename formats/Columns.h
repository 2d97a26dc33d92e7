// What every event has: the keys of JSON, the elements of XML, the columns of CSV.
#pragma once

#include "formats/DecodedEvent.h"

namespace Pegasus::formats {

// What an event has only when asked for.
enum class Extra : std::uint8_t { None, Time, Origin };

// A number or a text: the others are null.
struct Column {
    const char* name;
    const char* meaning;
    std::uint32_t DecodedEvent::*number;
    std::string_view DecodedEvent::*text;
    Extra extra = Extra::None;
    std::uint64_t DecodedEvent::*number64 = nullptr;

    void putNumber(const DecodedEvent& event, mpu::TextWriter& out) const {
        number ? out.decimal(event.*number) : out.decimal64(event.*number64);
    }
};

// In the order in which they are written. A name once published stays.
inline constexpr Column kColumns[] = {
    {"enclosureSerialNumber", "Serial number of the enclosure", nullptr,
     &DecodedEvent::enclosureSerialNumber},
    {"controllerSerialNumber", "Serial number of the controller that logged the event", nullptr,
     &DecodedEvent::controllerSerialNumber},
    {"controllerSlotID", "Slot of that controller", &DecodedEvent::controllerSlotID, nullptr},
    {"eventLogInstanceNumber", "Which of the controller's event logs",
     &DecodedEvent::eventLogInstanceNumber, nullptr},
    {"sequenceID", "Running number within the log", &DecodedEvent::sequenceID, nullptr},
    {"timestamp", "Raw firmware time", &DecodedEvent::timestamp, nullptr},
    {"source", "Module that wrote the record; the number of one without a name", nullptr,
     &DecodedEvent::source},
    {"category", "Category; the number of one without a name", nullptr, &DecodedEvent::category},
    {"eventType",
     "Severity: 1 informational, 2 warning, 3 error; 101, 102, 103 the same for engineering; 0 "
     "unknown",
     &DecodedEvent::eventType, nullptr},
    {"eventTypeText", "The same as text", nullptr, &DecodedEvent::eventTypeText},
    {"eventID", "Title", nullptr, &DecodedEvent::eventID},
    {"summary", "One line", nullptr, &DecodedEvent::summary},
    {"body", "Elements, text or a dump", nullptr, &DecodedEvent::body},
    {"layout",
     "How well the places of what is said are known, the weakest of them: documented, inferred "
     "from "
     "their neighbours, or assumed",
     nullptr, &DecodedEvent::layout},
    {"missingBytes", "Bytes that were wanted and are not in the record: zeros stand for them",
     &DecodedEvent::missingBytes, nullptr},
    {"unreadBytes", "Bytes of the payload that nothing was read from", &DecodedEvent::unreadBytes,
     nullptr},
    {"time", "The timestamp as RFC 3339, with --epoch", nullptr, &DecodedEvent::time, Extra::Time},
    {"file", "Where the event comes from, with --origin", nullptr, &DecodedEvent::file,
     Extra::Origin},
    {"offset",
     "Place of its first byte among those of the file, unpacked and as bytes, with --origin",
     nullptr, nullptr, Extra::Origin, &DecodedEvent::offset},
};

// The version of the formats that programs read. It grows when a column goes or changes its
// meaning, not when one is added.
inline constexpr unsigned kFormatVersion = 1;

} // namespace Pegasus::formats
