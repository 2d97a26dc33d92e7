// The 64-byte header in front of every management-protocol message.
#pragma once

#include "event/Export.h"

#include <Pegasus/Common/String.h>

#include <atomic>
#include <cstdint>
#include <string>

namespace Pegasus {

namespace mpu::message_header {

// Byte offsets in the header. All numbers are big-endian. The same header travels inside some
// records (start-up, iSCSI and iSNS events), where these offsets hold too.
inline constexpr unsigned kListHead = 0;            // two u32
inline constexpr unsigned kMessageType = 8;         // u8
inline constexpr unsigned kVersion = 9;             // u8
inline constexpr unsigned kLength = 10;             // u16, counts these 64 bytes too
inline constexpr unsigned kProtocol = 12;           // u8
inline constexpr unsigned kType = 13;               // u24, the low bits of the word at 12
inline constexpr unsigned kRequestor = 16;          // u8
inline constexpr unsigned kControl = 17;            // u8
inline constexpr unsigned kDestination = 18;        // u8
inline constexpr unsigned kLocalRecipients = 20;    // u64 bit map
inline constexpr unsigned kOutOfBoxRecipients = 28; // u64 bit map
inline constexpr unsigned kReturnCode = 36;         // u32
inline constexpr unsigned kHandle = 40;             // u32
inline constexpr unsigned kGeneralUse1 = 44;        // u32
inline constexpr unsigned kGeneralUse2 = 48;        // u32
inline constexpr unsigned kGeneralUse3 = 52;        // u32, 56..63 are reserved
inline constexpr unsigned kSize = 64;

} // namespace mpu::message_header

class MPUEVENT_EXPORT CMAPMessageHeader {
public:
    // Message length 64 and a fresh handle from `nextHandleValue`, all else zero.
    CMAPMessageHeader();
    // Takes over 64 wire bytes; draws no handle.
    explicit CMAPMessageHeader(const void* wireBytes);

    // Total message length in bytes: this header and all that follows it.
    std::uint16_t getMessageLength() const;
    void setMessageLength(std::uint16_t length);
    std::uint32_t getHandle() const;

    const unsigned char* wireBytes() const { return wire_; }

    // One line with all fields, for diagnostics.
    String str() const;

    // Makes `name` a valid element name of the same length: the first character must be a letter,
    // the others letters or digits (ASCII); any other becomes "_". Empty for a null `name`.
    static std::string cmapXmlTagNameFix(const char* name);

    // The handle of the next default-constructed header. Shared by all threads.
    static std::atomic<std::uint32_t> nextHandleValue;

private:
    unsigned char wire_[mpu::message_header::kSize];
    [[maybe_unused]] std::uint32_t extra_; // travels with the header in memory, not on the wire
};

} // namespace Pegasus
