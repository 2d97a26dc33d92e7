// The event-log record as the controller's firmware modules write it: a 152-byte header that all
// modules fill the same way, then `evStructLength` payload bytes in the module's own layout.
#pragma once

#include "event/BigEndian.h"

#include <cstddef>
#include <cstdint>

namespace Pegasus {

// All numbers are big-endian; the structure has alignment 1 and may be laid over raw bytes.
// A decoder gets it together with the record length that the carrying message announced. The
// memory behind the pointer must hold max(announced length, 152 + evStructLength) bytes;
// MPUEvent::create_Avrel_Event() guarantees that for every message.
struct EmpEvLogMsg_s {
    char enclosureSerialNumber[64];      // 0: NUL-terminated
    char controllerSerialNumber[64];     // 64: NUL-terminated
    mpu::Big<std::uint32_t> slotId;      // 128: slot of the logging controller
    mpu::Big<std::uint32_t> logInstance; // 132: which of the controller's event logs
    mpu::Big<std::uint32_t> sequenceId;  // 136: running number within the log
    mpu::Big<std::uint32_t> timestamp; // 140: raw firmware time; unit and epoch are the firmware's
    mpu::Big<std::uint16_t> evStructLength; // 144: payload bytes after the header
    std::uint8_t source;                    // 146: module id, selects the decoder
    std::uint8_t eventType;                 // 147: 1, 2, 3 customer; 101, 102, 103 engineering
    std::uint8_t category;                  // 148: 1 to 14
    std::uint8_t payloadVersion;            // 149: generation of the module's payload layout
    mpu::Big<std::uint16_t> eventId;        // 150: module-specific event code
};

static_assert(sizeof(EmpEvLogMsg_s) == 152 && alignof(EmpEvLogMsg_s) == 1);
static_assert(offsetof(EmpEvLogMsg_s, evStructLength) == 144);
static_assert(offsetof(EmpEvLogMsg_s, eventId) == 150);

} // namespace Pegasus
