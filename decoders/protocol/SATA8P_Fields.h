// Fields of drives and adapters that no format can show.
#pragma once

#include "decoders/protocol/SATA8P_Names.h"
#include "event/TableCompiler.h"

namespace Pegasus::mpu::sata {

// ---- for rows ----------------------------------------------------------------------------------

char* putCapacity(char* out, const std::uint8_t* at);
char* putElapsed(char* out, const std::uint8_t* at);
char* putCdb(char* out, const std::uint8_t* at);
char* putFisLba(char* out, const std::uint8_t* at);
char* putSenseKey(char* out, const std::uint8_t* at);
char* putSenseNumber(char* out, const std::uint8_t* at);
char* putRegisterCause(char* out, const std::uint8_t* at);
char* putRequestStatus(char* out, const std::uint8_t* at);
char* putSwapped(char* out, const std::uint8_t* at);
char* putPcixCommand(char* out, const std::uint8_t* at);

inline constexpr std::uint16_t kCapacityRoom = 32;
inline constexpr std::uint16_t kElapsedRoom = 32;
inline constexpr std::uint16_t kRequestStatusRoom = 48;

inline constexpr CustomField kCapacity{putCapacity, kCapacityRoom, "sectors as a size"};
inline constexpr CustomField kElapsed{putElapsed, kElapsedRoom, "seconds, then milliseconds"};
inline constexpr CustomField kCdb{putCdb, 48, "16 of CDB, then its length"};
inline constexpr CustomField kFisLba{putFisLba, kHexRoom,
                                     "LBA, low to high, around the device byte"};
inline constexpr CustomField kSenseKey{putSenseKey, kSenseKeys.room,
                                       "sense key in the low four bits"};
inline constexpr CustomField kSenseNumber{putSenseNumber, 2, "its number"};
inline constexpr CustomField kRegisterCause{putRegisterCause, kErrorCauses.room,
                                            "status, error and, from the fourth on, the command"};
inline constexpr CustomField kRequestStatus{putRequestStatus, kRequestStatusRoom,
                                            "status, then what failed"};
inline constexpr CustomField kSwapped{putSwapped, kHexRoom, "low word, then high word"};
inline constexpr CustomField kPcixCommand{putPcixCommand, kPcixCommands.room,
                                          "command in the low four bits"};

// ---- for the decoder ---------------------------------------------------------------------------

// A count of 512-byte sectors as "931.5 GB".
char* putSize(char* out, std::uint64_t sectors);
// "1.500 Seconds"
char* putSeconds(char* out, std::uint32_t seconds, std::uint32_t milliseconds);

void putCommandFis(TextWriter& body, const RecordView& fis);
// Each returns what a summary says of it.
std::string_view putStatusFis(TextWriter& body, const RecordView& fis, std::uint8_t command);
std::string_view putSense(TextWriter& body, const RecordView& sense);

} // namespace Pegasus::mpu::sata
