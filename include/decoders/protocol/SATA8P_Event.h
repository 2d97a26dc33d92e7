// Decoder of the device manager, the data-path processor's module that owns the SATA and SAS
// adapters, their channels and the drives.
#pragma once

#include "event/Avrel_Event.h"
#include "event/XmlString.h"

#include <string>

namespace Pegasus {

// Wire structures: all numbers big-endian, alignment 1.

// Header of versions 1 and 2, at record offset 152; the event's body follows it.
struct DEVICE_MGR_EVL_HDR {
    mpu::Big<std::uint32_t> eventType;    // 0: version 2: 1 hardware, 2 drive, 3 bugcheck
    mpu::Big<std::uint32_t> eventCode;    // 4: version 1: event number, 101 to 309
    mpu::Big<std::uint32_t> marker;       // 8: 0xFFFFFFFF in early version-2 records
    mpu::Big<std::uint32_t> line;         // 12: firmware source line
    mpu::Big<std::uint32_t> adapter;      // 16
    mpu::Big<std::uint32_t> pciBus;       // 20
    mpu::Big<std::uint32_t> channel;      // 24
    mpu::Big<std::uint32_t> missedEvents; // 28: events that could not be logged
    mpu::Big<std::uint32_t> processFlags; // 32
};
static_assert(sizeof(DEVICE_MGR_EVL_HDR) == 36);

// Bodies of version 2, at record offset 188; the layout tables say what is where.
struct DEVICE_MGR_HARDWARE_EVENT {
    mpu::Big<std::uint32_t> idSelect;
    mpu::Big<std::uint32_t> pciErrorCode;
};
struct DEVICE_MGR_DRIVE_EVENT {
    unsigned char bytes[80];
};
struct DEVICE_MGR_BUG_CHECK_EVENT {
    unsigned char bytes[120];
};

// A version-3 record: the common header, the module's own, then evStructLength - 32 bytes of class
// data at 184.
struct DM_EVL {
    EmpEvLogMsg_s record;
    mpu::Big<std::uint32_t> eventClass; // 152: 1 XPort, 2 Device, 3 Attention, 4 Bugcheck, 5 Trace
    mpu::Big<std::uint32_t> identifier; // 156
    mpu::Big<std::uint32_t> expander;   // 160
    mpu::Big<std::uint32_t> phy;        // 164
    mpu::Big<std::uint32_t> adapter;    // 168
    mpu::Big<std::uint32_t> pciBus;     // 172
    mpu::Big<std::uint32_t> missedEvents; // 176
    mpu::Big<std::uint32_t> reserved;     // 180
};
static_assert(sizeof(DM_EVL) == 184);

// Serial ATA: Register FIS, host to device (type 0x27).
struct SATA_HOST_DEVICE_FIS {
    std::uint8_t type;
    std::uint8_t port; // C bit and port-multiplier port
    std::uint8_t command;
    std::uint8_t features;
    std::uint8_t lba[3]; // low, mid, high
    std::uint8_t device;
    std::uint8_t lbaExp[3]; // bits 24 to 47
    std::uint8_t featuresExp;
    std::uint8_t sectorCount;
    std::uint8_t sectorCountExp;
    std::uint8_t reserved;
    std::uint8_t control;
    std::uint8_t reserved2[4];
};
static_assert(sizeof(SATA_HOST_DEVICE_FIS) == 20);

// Serial ATA: Register FIS, device to host (type 0x34).
struct SATA_DEVICE_HOST_FIS {
    std::uint8_t type;
    std::uint8_t port;
    std::uint8_t status; // bit 0: the error register is valid
    std::uint8_t error;
    std::uint8_t lba[3];
    std::uint8_t device;
    std::uint8_t lbaExp[3];
    std::uint8_t reserved; // shown as Status_FIS_Features_Exp
    std::uint8_t sectorCount;
    std::uint8_t sectorCountExp;
    std::uint8_t reserved2;
    std::uint8_t control;
    std::uint8_t reserved3[4];
};
static_assert(sizeof(SATA_DEVICE_HOST_FIS) == 20);

// SPC: fixed-format sense data (response code 0x70 or 0x71).
struct SCSI_REQ_SENSE_DATA {
    std::uint8_t responseCode;
    std::uint8_t segment;
    std::uint8_t flagsAndKey; // sense key: low four bits
    mpu::Big<std::uint32_t> information;
    std::uint8_t additionalLength;
    std::uint8_t commandInformation[4];
    std::uint8_t asc;
    std::uint8_t ascq;
    std::uint8_t fieldReplaceableUnit;
    std::uint8_t keySpecific[3];
};
static_assert(sizeof(SCSI_REQ_SENSE_DATA) == 18);

// Title "Device Manager Event" unless the event has one of its own. Bodies are flat runs of
// elements without blanks between them, made safe as a whole.
class MPUEVENT_EXPORT SATA8P_Event : public Avrel_Event {
public:
    // Payload version 3 or 2 as the record says; any other is version 2 when the marker is set and
    // version 1 when not. A null record or a length of 0 leaves the base's fields.
    SATA8P_Event(const EmpEvLogMsg_s* record, int length);
    ~SATA8P_Event() override;

    // Each decodes a record of its version into title, summary and body. The memory behind the
    // record holds 152 + evStructLength bytes, in version 1 `length` bytes if that is more.
    void build_version_1_events(const EmpEvLogMsg_s* record, int length);
    void build_version_2_events(const EmpEvLogMsg_s* record);
    void build_version_3_events(const DM_EVL* record);

    // The event types of version 2, with `code` for the header's event code.
    void build_hardware_event(const DEVICE_MGR_HARDWARE_EVENT* event,
                              const DEVICE_MGR_EVL_HDR* header, unsigned int code);
    void build_drive_event(const DEVICE_MGR_DRIVE_EVENT* event, const DEVICE_MGR_EVL_HDR* header,
                           unsigned int code);
    void build_bugcheck_event(const DEVICE_MGR_BUG_CHECK_EVENT* event,
                              const DEVICE_MGR_EVL_HDR* header, unsigned int code);

    // The event classes of version 3: each appends the elements of the class data to `body` and
    // sets the summary. An identifier without a layout in the class changes nothing.
    void build_xport_event_v3(const DM_EVL* record, XmlString& body);
    void build_device_event_v3(const DM_EVL* record, XmlString& body);
    void build_attention_event_v3(const DM_EVL* record, XmlString& body);
    void build_bugcheck_event_v3(const DM_EVL* record, XmlString& body);
    void build_trace_time_v3(const DM_EVL* record, XmlString& body);

    // Fields. "body" and "summary" are appended to.
    static void build_cdb(XmlString& body, const unsigned char* cdb, unsigned int length);
    static void build_command_fis(XmlString& body, const SATA_HOST_DEVICE_FIS& command);
    // The cause of the error goes into the summary; what 0x40 means depends on the command.
    static void build_status_fis(XmlString& body, const SATA_DEVICE_HOST_FIS& status,
                                 const SATA_HOST_DEVICE_FIS& command, std::string& summary);
    // The sense key goes into the summary.
    static void build_request_sense(XmlString& body, const SCSI_REQ_SENSE_DATA& sense,
                                    std::string& summary);
    // The text up to its NUL, at most `length` bytes, without the blanks around it.
    static std::string get_inquiry_string(const char* text, int length);
    // A count of 512-byte sectors as "931.5 GB". Units are powers of 1024, and a value of exactly
    // one unit is shown in the next smaller one.
    static std::string get_capacity(unsigned long long sectors);
    static std::string get_capacity(unsigned int high, unsigned int low);
    // "1.500 Seconds"
    static std::string build_seconds(unsigned int seconds, unsigned int milliseconds);
    static std::string get_marvell_command(unsigned int command);
    static std::string get_drp_command(unsigned int command);
    static std::string get_drp_status(unsigned int status, unsigned int detail);
    // "Unknown (n)"
    static std::string build_unknown_string(unsigned int n);
};

} // namespace Pegasus
