// Tables of the SMI-S provider's decoder. Offsets are after the location block.
#pragma once

#include "decoders/management/Management_Layouts.h"
#include "event/Catalogue.h"
#include "platform/cmap/ManagedObject_Layouts.h"

namespace Pegasus::mpu::smis {

// A managed object: class identifier, size of the object, the object, a text.
inline constexpr unsigned kClassIdAt = 0;    // u8
inline constexpr unsigned kObjectSizeAt = 2; // u16
inline constexpr unsigned kObjectAt = 4;
inline constexpr Row kObjectHeaderRows[] = {
    {"ClassId", "%d", u8(kClassIdAt)},
};

// The object by its class; `Rows` are its attributes. What is known of the statistics was logged by
// another service; that the objects are encoded alike is assumed.
void putObject(Draft& draft, const Record& record, const RecordView& data);
template <const auto& Rows>
inline constexpr CustomPiece kObject{
    putObject,
    "`ClassName`, attributes, `Hex`: as many bytes from 4 as the u16 at 2 says.",
    Rows,
    {},
    Provenance::Assumed};
void putObjectText(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kObjectText{putObjectText, "`Text`: the text after the object."};
void putObjectSentence(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kObjectSentence{putObjectSentence,
                                             "The first sentence of the text after the object."};

void putSentence(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kSentence{putSentence, "The first sentence of the text."};

void putDump(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kDump{
    putDump, "What follows the text's NUL, as `Hex`.", {}, "Malformed\0\xDE\xAD\xBE\xEF\x01\x02"sv};

void putPairs(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kPairs{
    putPairs,
    "After the text's NUL `key=value` pairs with blanks between them: each is an element named by "
    "its key. A comma after a value is dropped.",
    {},
    "Indication lost\0Class=AlertIndication, Count=2 Filter=a=b"sv};

void putTrailer(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kTrailer{putTrailer,
                                      "Unless the severity is 1: `File`, `Func`, `Line`."};
void putMessageTrailer(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kMessageTrailer{putMessageTrailer, kTrailer.description};

inline constexpr unsigned kMessage = 2013; // its payload may be without a location block
inline constexpr unsigned kObjectEvent = 2018;
constexpr EventRow object(Codes codes, const CustomPiece& piece, std::string_view sizeBytes,
                          unsigned size) {
    return {codes,
            {"Error in CMAP ManagedObject internal processing",
             "Warning in CMAP ManagedObject internal processing", "ManagedObject Information"},
            kObjectSentence,
            {custom(piece, kObjectAt), kObjectHeaderRows, kObjectText, kTrailer,
             sample(kObjectSizeAt, sizeBytes), sample(kObjectAt + size, "Instance modified\0"sv)}};
}

inline constexpr EventRow kEventRows[] = {
    {anyOf(2000),
     {"Error Text", "Warning Text", "Text Information"},
     kSentence,
     {kTextRows, kTrailer, sample(0, "Subscription refreshed; 3 indications pending\0"sv)}},
    {anyOf(2005),
     {"Error Dump Data", "Warning Dump Data", "Dump Information"},
     kSentence,
     {kTextRows, kDump, kTrailer}},
    {anyOf(kMessage),
     {"MMSG Error", "MMSG Warning", "MMSG Information"},
     summary(kSentence, kManagementMessageSize),
     {kManagementMessageRows, rows(kTextRows, kManagementMessageSize), kMessageTrailer,
      sample(kManagementMessageSize, "Reply(): too late\0"sv)}},
    object(anyOf(kObjectEvent), kObject<kObjectRows>, "\0\x18"sv, 24),
    object({kObjectEvent, 41, 42}, kObject<kPortStatsRows>, "\1\x40"sv, 320),
    object({kObjectEvent, 43}, kObject<kOffloadStatsRows>, "\0\x50"sv, 80),
    object({kObjectEvent, 44}, kObject<kTcpStatsRows>, "\0\x40"sv, 64),
    object({kObjectEvent, 45}, kObject<kManagementPortStatsRows>, "\1\x90"sv, 400),
    {anyOf(2020),
     {"Error Data", "Warning Data", "Informational Data"},
     kSentence,
     {kTextRows, kPairs, kTrailer}},
};

inline constexpr Piece kFrame[] = {
    rows(kLocationRows, 152),
    sample(152, "\x01\x2e"
                "SMIS_Indication.cpp\0deliver\0"sv),
};
inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .major = u16(150),
    .minor = u8(184 + kClassIdAt),
    .dataAt = 184,
    .frame = kFrame,
    .note = "The payload begins with a location block: line, file name and its NUL, function name "
            "up to the end of the block; a management message has it when the payload is longer "
            "than 32 bytes. The data follow it. The second code counts for managed objects alone. "
            "Module 30 (SMIS IND) is decoded alike.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};

#define MPUEVENT_MANAGED_OBJECT(ID, CLASS) {ID, #CLASS},
inline constexpr Code kClassIds[] = {MPUEVENT_MANAGED_OBJECTS(MPUEVENT_MANAGED_OBJECT)};
#undef MPUEVENT_MANAGED_OBJECT

inline constexpr Module kModule{29, "SMIS_Event", {}, kTables, kClassIds};

} // namespace Pegasus::mpu::smis
