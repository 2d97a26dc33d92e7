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

// Management message. The opcode is second there and written last.
inline constexpr Row kMmsgRows[] = {
    {"mmsg_length", "0x%08X", u16(0)},        {"mmsg_requestor", "0x%08X", u8(2)},
    {"mmsg_dest_ep", "0x%08X", u8(3)},        {"mmsg_return_code", "0x%08X", u32(8)},
    {"mmsg_general_use1", "0x%08X", u32(12)}, {"mmsg_general_use2", "0x%08X", u32(16)},
    {"mmsg_opcode", "0x%08X", u32(4)},
};

inline constexpr unsigned kLwsemSize = sizeof(LwsemRecord);
inline constexpr unsigned kMsaSize = sizeof(MsaRecord);
inline constexpr unsigned kMmsgSize = sizeof(MmsgRecord);

inline constexpr Row kRequestRows[] = {{"Request_Type", "%s", eventName}};
inline constexpr Row kInterruptRows[] = {{"Interrupt", "0x%08X", u32(0)}};
inline constexpr Row kMessageRows[] = {{"Message", "0x%08X", u32(0)}};

// ---- events ------------------------------------------------------------------------------------

// A structure in the data area.
constexpr Piece data(std::span<const Row> table, unsigned at = 0) {
    return rows(table, kDataAt + at);
}

// The length of the data area of a sample.
template <std::uint32_t Value>
inline constexpr char kBigEndian[] = {
    static_cast<char>(Value >> 24), static_cast<char>(Value >> 16 & 0xFF),
    static_cast<char>(Value >> 8 & 0xFF), static_cast<char>(Value & 0xFF)};
template <std::uint32_t Length>
inline constexpr Piece kLength = sample(kLengthAt, {kBigEndian<Length>, 4});

void putFileSummary(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFileSummary{putFileSummary, "the file"};
inline constexpr Row kFileRows[] = {{"File", "%s", text(0, 127)}};

// What an event shows: the request by its text, then `pieces`. The text is the summary, too.
constexpr EventRow row(Codes codes, std::string_view text, const Pieces& pieces = {},
                       const Summary& summary = line("%s", eventName)) {
    EventRow made{codes, text, summary, {kRequestRows}};
    std::copy_n(pieces.begin(), kMaxPieces - 1, made.pieces.begin() + 1);
    return made;
}

// What selects an event of the two modules.
inline constexpr Key kKeys[] = {{150, 2, 1}};
inline constexpr Value kClass = u32(sizeof(EmpEvLogMsg_s) + kClassAt);
inline constexpr Value kCode = u32(sizeof(EmpEvLogMsg_s) + kCodeAt);
#define MPUEVENT_DATAPATH_NOTE                                                                     \
    "The length of the data area, which begins at 20, is the u32 at 16. Lists end with the area; " \
    "structures are shown whole, whatever it says. "

} // namespace Pegasus::mpu::datapath
