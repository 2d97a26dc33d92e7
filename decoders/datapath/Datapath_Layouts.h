// Sub-records that the I/O manager and the message/interrupt processor both write. Offsets are from
// the start of the sub-record.
#pragma once

#include "decoders/datapath/Frame.h"
#include "event/Catalogue.h"

namespace Pegasus::mpu::datapath {

// Light-weight semaphore of the firmware's operating system.
inline constexpr Row kLwsemRows[] = {
    {"lwsem_valid_bit", "0x%08X", u32(0)},
    {"lwsem_value", "0x%08X", u32(4)},
};

// Message queue of the hardware.
inline constexpr Row kMsaRows[] = {
    {"msa_full_hi_level", "0x%08X", u16(0)},
    {"msa_full_lo_level", "0x%08X", u16(2)},
    {"msa_read_pointer", "0x%08X", u16(4)},
    {"msa_write_pointer", "0x%08X", u16(6)},
    {"msa_count", "0x%08X", u16(8)},
    {"msa_not_mt_signal", "0x%08X", u16(10)},
    {"msa_base_address_of_data", "0x%08X", u32(12)},
    {"msa_hysteresis", "0x%08X", u8(16)},
    {"msa_mode", "0x%08X", u8(17)},
    {"msa_size", "0x%08X", u16(18)},
    {"msa_hi_mark_signal", "0x%08X", u16(20)},
    {"msa_lo_mark_signal", "0x%08X", u16(22)},
    {"msa_over_flow_signal", "0x%08X", u16(24)},
    {"msa_under_flow_signal", "0x%08X", u16(26)},
    {"msa_write_check_point", "0x%08X", u32(28)},
};

// Management message. The opcode lies second and is written last.
inline constexpr Row kMmsgRows[] = {
    {"mmsg_length", "0x%08X", u16(0)},        {"mmsg_requestor", "0x%08X", u8(2)},
    {"mmsg_dest_ep", "0x%08X", u8(3)},        {"mmsg_return_code", "0x%08X", u32(8)},
    {"mmsg_general_use1", "0x%08X", u32(12)}, {"mmsg_general_use2", "0x%08X", u32(16)},
    {"mmsg_opcode", "0x%08X", u32(4)},
};

inline constexpr unsigned kLwsemSize = sizeof(LwsemRecord);
inline constexpr unsigned kMsaSize = sizeof(MsaRecord);
inline constexpr unsigned kMmsgSize = sizeof(MmsgRecord);

inline constexpr Row kInterruptRows[] = {{"Interrupt", "0x%08X", u32(0)}};
inline constexpr Row kMessageRows[] = {{"Message", "0x%08X", u32(0)}};

// ---- for the catalogue -------------------------------------------------------------------------

inline constexpr std::uint16_t kFrameAt = 152;
inline constexpr std::uint16_t kArea = kFrameAt + kDataAt;

template <std::uint32_t Class, std::uint32_t EventCode>
inline constexpr Key kKeys[] = {
    {150, 2, 1}, {kFrameAt + kClassAt, 4, Class}, {kFrameAt + kCodeAt, 4, EventCode}};

// A number as it lies in a record.
template <std::uint32_t Value>
inline constexpr char kBigEndian[] = {
    static_cast<char>(Value >> 24), static_cast<char>(Value >> 16 & 0xFF),
    static_cast<char>(Value >> 8 & 0xFF), static_cast<char>(Value & 0xFF)};
template <std::uint32_t Value>
inline constexpr std::string_view kWord{kBigEndian<Value>, 4};

// The length of the data area.
template <std::uint32_t Length>
inline constexpr Fill kLength[] = {{kFrameAt + kLengthAt, kWord<Length>}};

// "Codes: 10 Manager Unexpected Message Type, 32 Manager MSA Event"
struct CodeText {
    std::array<char, 1024> text{};
    std::size_t size = 0;

    constexpr void put(std::string_view more) {
        for (char c : more)
            text[size++] = c;
    }
    constexpr void put(unsigned number) {
        if (number >= 10)
            put(number / 10);
        text[size++] = static_cast<char>('0' + number % 10);
    }
};
template <const auto& Events, std::uint8_t Class>
inline constexpr CodeText kCodeText = [] {
    CodeText list;
    bool first = true;
    for (const auto& event : Events) {
        if (event.eventClass != Class)
            continue;
        list.put(first ? "Codes: " : ", ");
        if (event.code != kAnyCode)
            list.put(event.code);
        else
            list.put(first ? "any" : "any other");
        list.put(" ");
        list.put(std::string_view(event.text));
        first = false;
    }
    return list;
}();
template <const auto& Events, std::uint8_t Class>
inline constexpr std::string_view kCodeList{kCodeText<Events, Class>.text.data(),
                                            kCodeText<Events, Class>.size};

} // namespace Pegasus::mpu::datapath
