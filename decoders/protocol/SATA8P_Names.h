// The words of the device manager, as its firmware team wrote them: readers match these texts, so
// their misspellings stay.
#pragma once

#include "event/Names.h"

namespace Pegasus::mpu::sata {

// Event types of versions 1 and 2; no element shows them, nor the next and kClasses.
inline constexpr std::string_view kEventTypeTexts[] = {"Invalid", "Hardware", "Drive", "Bugcheck"};
inline constexpr NameTable kEventTypes = names<kEventTypeTexts>();

inline constexpr std::string_view kShortEventTypeTexts[] = {"Invalid", "Hardware", "Drive"};
inline constexpr NameTable kShortEventTypes = names<kShortEventTypeTexts>();

// Codes of hardware and drive events.
inline constexpr std::string_view kDriveEventTexts[] = {
    "Invalid",
    "Adapter Not Found",
    "Adapter Error",
    "Not Ready",
    "Failed Discovery",
    "Removed",
    "Inserted",
    "Command Failed",
    "Command Timed Out",
    "SATA Error",
    "Command Exceeded Allotted Time",
};
inline constexpr NameTable kDriveEvents = names<kDriveEventTexts>();

inline constexpr std::string_view kCompletionTexts[] = {
    "Success", "Failed", "Uncorrectable Error", "Retryable", "Not Present",
};
inline constexpr NameTable kCompletions = names<kCompletionTexts>();

inline constexpr std::string_view kDetailedStatusTexts[] = {
    "Invalid",
    "Command Aborted",
    "Command Succeeded",
    "PCIX Device Offline",
    "Not Connected",
    "Connected but no Link",
    "PHY Offline received from SATA Software",
    "Unknown Link State",
    "Can't Configure Software Channel",
    "Returned BSY for more than 7 seconds",
    "Returned BSY for more than 14 seconds",
    "Can't Configure EDMA before IDENTIFY",
    "Can't Enable EDMA before IDENTIFY",
    "SATA Software Rejected IDENTIFY",
    "IDENTIFY Data has bad CRC",
    "SATA Software can't Parse IDENTIFY Data",
    "Can't Disable EDMA",
    "Can't Disable Write Cache",
    "IDENTIFY Failed After Write Cache Disable",
    "SATA Software can't Parse IDENTIFY Data After Write Cache Disable",
    "Failed to Disable Write Cache",
    "Can't Enable Read Cache",
    "IDENTIFY Failed After Read Cache Enable",
    "SATA Software can't Parse IDENTIFY Data After Read Cache Enable",
    "Failed to Enable Read Cache",
    "Can't set PIO Slow Mode",
    "Can't set PIO Mode",
    "Can't set UDMA Mode",
    "Can't Configure EDMA After IDENTIFY",
    "Can't Enable EDMA After IDENTIFY",
    "Queued Mode Disabled",
    "Command Queue Full",
    "Command Parameter Error",
    "SATA Software Returned Unknown Response During Command Scheduling",
};
inline constexpr NameTable kDetailedStatus = names<kDetailedStatusTexts>();

inline constexpr std::string_view kOperationTexts[] = {
    "Read",       "Write",        "Identify",         "Read Long",
    "Write Long", "Enable SMART", "GET SMART STATUS", "GET SMART DATA",
};
inline constexpr NameTable kOperations = names<kOperationTexts>();

inline constexpr std::string_view kBugcheckTexts[] = {
    "Invalid",
    "IRQ5 won't install",
    "IRQ6 won't install",
    "Can't create MQX Semaphore",
    "Returned from Main Process Loop",
    "Invalid Hardware Configuration",
    "Invalid PCIX Interrupt Status",
    "Received Unknown Structure",
    "Unknown Drive Command Type",
    "Unknown Command Response",
    "Unknown Segmented Command Response",
    "Unknown PIO Command Response",
    "Unknown Asynchronous Event",
    "Invalid DRP Parameter",
    "Not Queue Manager or PCIX Interrupt",
    "Queue Manager Interrupt Fifo Overflow",
    "MSA Queue Overflow",
    "Spurious Interrupt",
    "Unknown Queue Manager Interrupt",
    "Unexpected High Watermark Interrupt",
    "Unexpected Low Watermark Interrupt",
    "MQX Reported Error on Wakeup",
    "Incoming Work MSA Queue Error",
    "Out of DRIVE_CMDs",
    "DRIVE_CMD not Valid during Allocation",
    "DRIVE_CMD has Non-empty Listhead during Allocation",
    "DRIVE_CMD Still Linked during De-allocation",
    "DRIVE_CMD not Valid During De-allocation",
    "DRIVE_CMD has Non-empty Listhead during De-allocation",
    "SATA Software Request Queue Address not Aligned",
    "SATA Software Response Queue Address not Aligned",
    "Unknown SATA Coftware Command Status",
    "Unknown SATA Software Asynchronous Event",
    "PRD Table not Equal to Data Transfer Request",
    "Tried to send Unknown PIO Command",
    "Error Converting Data Transfer Request to a PRD Table",
    "PCIX Configuration Command Failed",
    "PCIX Configuration Command Timed Out",
    "PCIX DWORD Write Failed",
    "PCIX DWORD Write Timed Out",
    "PCIX DWORD Read Failed",
    "PCIX DWORD Read Timed Out",
    "No MMSGLS for Event Log",
    "SATA Software Response Ring Update Timed Out",
    "Invalid Event",
    "Invalid Event Type",
    "Invalid Bugcheck Information",
    "Invalid Bugcheck",
};
inline constexpr NameTable kBugchecks = names<kBugcheckTexts>();

// By the four-bit command field of PCI-X.
inline constexpr std::string_view kPcixCommandTexts[] = {
    "Invalid", "Configuration Write",
    "Invalid", "Dword Write",
    "Invalid", "Invalid",
    "Invalid", "Burst Write",
    "Invalid", "Configuration Read",
    "Invalid", "Dword Read",
    "Invalid", "Invalid",
    "Invalid", "Burst Read",
};
inline constexpr NameTable kPcixCommands = names<kPcixCommandTexts>();

inline constexpr std::string_view kReasonTexts[] = {"Adapter error", "SATA cable", "SATA error"};
inline constexpr NameTable kReasons = names<kReasonTexts>();

// Identifiers of version 3.
inline constexpr std::string_view kIdentifierTexts[] = {
    "Invalid",
    "SAS Status",
    "Command Timeout",
    "Command Exceeded Allotted Time",
    "IOC Status",
    "IOC Log Information",
    "IOC Log Event Notice",
    "Target Attention",
    "LUN Attention",
    "LU Attention",
    "SATA Error",
    "SCSI Error",
    "Reset LU",
    "Identify Data Invalid",
    "Bugcheck",
    "SAS Port",
    "SAS Zero Reply",
    "DEVMGR Trace Time",
};
inline constexpr NameTable kIdentifiers = names<kIdentifierTexts>();

inline constexpr std::string_view kClassTexts[] = {
    "Invalid", "XPort", "Device", "Attention", "Bugcheck",
};
inline constexpr NameTable kClasses = names<kClassTexts>();

inline constexpr std::string_view kAsynchronousTexts[] = {
    "Invalid",
    "Disconnect",
    "Insert",
    "Unrecoverable error",
    "Recoverable error",
    "Too many recoverable errors",
    "Async notify",
    "Failed device error recovery",
    "Successful device error recovery",
    "Device error",
    "PCI error interrupt",
    "Deactivate EDMA",
    "Core driver callback",
    "Bad Read Log Extended NCQ data",
};
inline constexpr NameTable kAsynchronous = names<kAsynchronousTexts>();

// Status codes of the adapter's I/O controller.
inline constexpr auto kIocStatusTexts = [] {
    std::array<std::string_view, 0xA1> texts{};
    texts.fill("Unused");
    const auto from = [&](std::size_t code, std::initializer_list<std::string_view> run) {
        std::copy(run.begin(), run.end(), texts.begin() + code);
    };
    from(0x00,
         {"Success", "Invalid Function", "Busy", "Invalid SGL", "Internal Error", "Reserved",
          "Insufficient Resources", "Invalid Field", "Invalid State", "Op State Not Supported"});
    from(0x20, {"Config Invalid Action", "Config Invalid Type", "Config Invalid Page",
                "Config Invalid Data", "Config No Defauilts", "Config Can't Commit"});
    from(0x40,
         {"SCSI Recovered Error", "SCSI Invalid Bus", "SCSI Invalid Target",
          "SCSI Device Not There", "SCSI Data Overrun", "SCSI Data Underrun", "SCSI I/O Data Error",
          "SCSI Protocol Error", "SCSI Task Terminated", "SCSI Residual Mismatch",
          "SCSI Task MGMT Failed", "SCSI IOC Terminated", "SCSI EXT Terminated", "EEDP Guard Error",
          "EEDP Ref Tag Error", "EEDP App Tag Error"});
    from(0x60, {"Target Priority I/O", "Target Invalid Port", "Target Invalid I/O Index",
                "Target Aborted", "Target No Conn Retryable", "Target No Connection", "FC Aborted",
                "FC Rx Id Invaild", "FC DID Invalid", "FC Node Logged Out",
                "Target Xfer Count Mismatch", "Target STS Data Not Sent",
                "Target Data Offset Error", "FC Exchange Canceled", "Target Too Much Write Data",
                "Target IU Too Short", "Target Ack Nak Timeout", "Target Nak Recevied"});
    from(0x80,
         {"Lan Device Not Found", "Lan Device Failure", "Lan Transmit Error", "Lan Tranmit Aborted",
          "Lan Received Error", "Lan Received Aborted", "Lan Partial Packet", "Lan Canceled"});
    from(0x90, {"SAS SMP Request Failed", "SAS SMP Data Overrun"});
    from(0x98, {"Inband Aborted", "Inband No Connection"});
    from(0xA0, {"Diagnostic Released"});
    return texts;
}();
inline constexpr NameTable kIocStatus = names<kIocStatusTexts>();

inline constexpr std::string_view kComponentTexts[] = {
    "Device Manager",   "SCSI Class Driver", "SATA Class Driver",  "MMSG Mini-class Driver",
    "SCSI Port Driver", "SATA Port Driver",  "LSI Port Initiator", "PCI Interface Core",
};
inline constexpr NameTable kComponents = names<kComponentTexts>();

inline constexpr std::string_view kCommandStatusTexts[] = {
    "Success", "Retry", "Error", "Fatal", "Busy", "Queue Full",
};
inline constexpr NameTable kCommandStatus = names<kCommandStatusTexts>();

// SPC sense keys.
inline constexpr std::string_view kSenseKeyTexts[] = {
    "No Sense",        "Recovered Error", "Not Ready",      "Medium Error",
    "Harware Failure", "Illegal Request", "Unit Attention", "Write Protected",
    "Invalid",         "Invalid",         "Invalid",        "Aborted Command",
    "Invalid",         "Invalid",         "Miscompare",     "Invalid",
};
inline constexpr NameTable kSenseKeys = names<kSenseKeyTexts>();

// The firmware's list lacks a comma after its fifth name: two names make one entry, and all later
// ones are off by one.
inline constexpr std::string_view kSasStatusTexts[] = {
    "Success",
    "Unknown Error",
    "Invalid Frame",
    "UTC_Bad Dest",
    "UTC Break ReceviedUTC Connect Rate Not Support",
    "UTC Port Layer Request",
    "UTC Protocol Not Supported",
    "UTC Resources Busy",
    "UTC Wrong Destination",
    "Short Infomration Unit",
    "Long Information Unit",
    "Xfer Rdy Incorrect Write Data",
    "Xfer Rdy Request Offset Error",
    "Xfer Rdt Not Expected",
    "Data Incorrect Data Length",
    "Data Too Much Read Data",
    "Data Offset Error",
    "SDSF Nak Received",
    "SDSF Connection Failed",
    "Initiator Respnse Timeout",
};
inline constexpr NameTable kSasStatus = names<kSasStatusTexts>();

inline constexpr std::string_view kLinkRateTexts[] = {"Unknown", "1.5 Gb/S", "3.0 Gb/S"};
inline constexpr NameTable kLinkRates = names<kLinkRateTexts>();

inline constexpr std::string_view kControllerTexts[] = {"Marvell 5080", "Marvell 6081", "LSI 1068"};
inline constexpr NameTable kControllers = names<kControllerTexts>();

inline constexpr std::string_view kDeviceKindTexts[] = {"Disk", "SES"};
inline constexpr NameTable kDeviceKinds = names<kDeviceKindTexts>();

inline constexpr std::string_view kTransportTexts[] = {"SATA", "SAS"};
inline constexpr NameTable kTransports = names<kTransportTexts>();

inline constexpr std::string_view kProtocolTexts[] = {"SATA", "SCSI"};
inline constexpr NameTable kProtocols = names<kProtocolTexts>();

inline constexpr std::string_view kDiscoveryTexts[] = {"Discovered", "Removed"};
inline constexpr NameTable kDiscoveries = names<kDiscoveryTexts>();

// Codes of the Marvell driver and of drive request packets.
inline constexpr std::string_view kMarvellCommandTexts[] = {
    "Read",       "Write",        "Identify",         "Read Long",
    "Write Long", "Enable SMART", "Get SMART Status", "Get SMART Data",
};
inline constexpr NameTable kMarvellCommands = names<kMarvellCommandTexts>(Fallback::Decimal);
inline constexpr std::uint32_t kRead = 0;
inline constexpr std::uint32_t kReadLong = 3;

inline constexpr std::string_view kRequestCommandTexts[] = {"Read", "Write", "Identify"};
inline constexpr NameTable kRequestCommands = names<kRequestCommandTexts>(Fallback::Decimal);

// Details of a request that failed.
inline constexpr std::string_view kRequestFailureTexts[] = {
    "", "Invalid Parameter", "Uncorrectable Error", "Device Fault", "", "", "Invalid Device",
};
inline constexpr NameTable kRequestFailures = names<kRequestFailureTexts>();

// By the lowest bit set in the ATA error register, then what no single bit says.
inline constexpr std::string_view kErrorCauseTexts[] = {
    "Obselete/unknown",
    "No media present in removable media device",
    "Aborted command",
    "Media change request detected",
    "User addressable address could not be found",
    "Media changed since issuance of last command",
    "Data write protected", // of a read: kReadError
    "CRC error occurred during a UDMA data transfer",
    "Error bit set with no error (0x00)",
    "Data is uncorrectable",
    "Unknown",
};
inline constexpr NameTable kErrorCauses = names<kErrorCauseTexts>();
inline constexpr std::size_t kWriteError = 6;
inline constexpr std::size_t kNoError = 8;
inline constexpr std::size_t kReadError = 9;
inline constexpr std::size_t kNoCause = 10;

// The drive body of version 2 knows two of them.
inline constexpr std::string_view kDriveCauseTexts[] = {"Unknown", "Data is uncorrectable"};
inline constexpr NameTable kDriveCauses = names<kDriveCauseTexts>();

// Bits of the PCI error register in the order in which they are tested: the first one that is set
// is the cause. The firmware tests 0x10000 twice, so the second text is never seen.
inline constexpr std::uint32_t kPciCauseBits[] = {
    0x2,    0x4,    0x20,   0x40,    0x80,    0x100,   0x200,   0x400,    0x800,
    0x1000, 0x2000, 0x4000, 0x10000, 0x20000, 0x10000, 0x40000, 0x400000,
};
inline constexpr std::string_view kPciCauseTexts[] = {
    "PCI slave detection of bad write data parity",
    "Parity error response to read data driven by the PCI slave",
    "Parity error response to write data driven by the PCI master",
    "Bad parity detection during a PCI master read transaction",
    "PCI master generation of target abort for split completion",
    "PCI master generation of master abort",
    "PCI master generation of target abort",
    "Attempt to generate a PCI transaction while master is disabled",
    "PCI master reached the retry counter limit",
    "PCI master split completion discard timer expiration",
    "PCI master received split completion when its byte count does not match the original request",
    "PCI master received message error",
    "PCI slave generation of master abort as a completer",
    "PCI slave generate target abort",
    "PCI slave as a completer, detection of target abort",
    "PCI slave's read buffer discard timer expires",
    "PCI slave reached the retry counter limit when attempting to generate a split completion",
};
inline constexpr NameTable kPciCauses = names<kPciCauseTexts>();
static_assert(std::size(kPciCauseBits) == std::size(kPciCauseTexts));

} // namespace Pegasus::mpu::sata
