// Tables of the SMI-S provider's decoder. Offsets are behind the location block.
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

// The catalogue. Samples have a location block, so their data begin at 184.
inline constexpr std::uint16_t kBlockAt = 152;
inline constexpr std::uint16_t kDataAt = 184;
inline constexpr std::string_view kSampleBlock = "\x01\x2e"
                                                 "SMIS_Indication.cpp\0deliver\0"sv;

template <std::uint16_t Code>
inline constexpr Key kCode[] = {{150, 2, Code}};
template <std::uint8_t ClassId>
inline constexpr Key kClass[] = {{150, 2, 2018}, {kDataAt + kClassIdAt, 1, ClassId}};

inline constexpr Part kBlockAlone[] = {{"Location block", kLocationRows, kBlockAt}};
inline constexpr Part kMessageParts[] = {{"Location block", kLocationRows, kBlockAt},
                                         {"Structure", kManagementMessageRows, kDataAt}};
// What is known of the statistics was logged by another service; that the objects are encoded alike
// was chosen.
template <const auto& Rows>
inline constexpr auto kChosenRows = [] {
    auto rows = std::to_array(Rows);
    for (Row& row : rows)
        row.provenance = Provenance::Assumed;
    return rows;
}();
template <const auto& Rows>
inline constexpr Part kObjectParts[] = {{"Location block", kLocationRows, kBlockAt},
                                        {"Header", kObjectHeaderRows, kDataAt},
                                        {"Object", kChosenRows<Rows>, kDataAt + kObjectAt}};

inline constexpr Fill kTextFill[] = {
    {kBlockAt, kSampleBlock}, {kDataAt, "Subscription refreshed; 3 indications pending\0"sv}};
inline constexpr Fill kDumpFill[] = {{kBlockAt, kSampleBlock},
                                     {kDataAt, "Malformed request\0\xDE\xAD\xBE\xEF\x01\x02"sv}};
inline constexpr Fill kMessageFill[] = {
    {kBlockAt, kSampleBlock}, {kDataAt + kManagementMessageSize, "Reply(): too late\0"sv}};
inline constexpr Fill kKeyValueFill[] = {
    {kBlockAt, kSampleBlock},
    {kDataAt, "Indication lost\0Class=AlertIndication, Count=2 Filter=a=b"sv}};

// An object of `Size` bytes and the text behind it.
template <unsigned Size>
inline constexpr char kSizeBytes[] = {static_cast<char>(Size >> 8), static_cast<char>(Size & 0xFF)};
template <unsigned Size>
inline constexpr Fill kObjectFill[] = {
    {kBlockAt, kSampleBlock},
    {kDataAt + kObjectSizeAt, std::string_view(kSizeBytes<Size>, 2)},
    {kDataAt + kObjectAt + Size, "Instance modified\0"sv}};
template <unsigned Size>
inline constexpr Fill kManagementPortFill[] = {
    kObjectFill<Size>[0],
    kObjectFill<Size>[1],
    kObjectFill<Size>[2],
    { kDataAt + kObjectAt + 60, "Management Ethernet port\0"sv },
    { kDataAt + kObjectAt + 316, "eth0\0"sv },
    { kDataAt + kObjectAt + 380, "00:1B:21:A0:FF:10\0"sv }};

inline constexpr Section kSections[] = {
    {"Text", kCode<2000>, kBlockAlone, kTextFill, "A text."},
    {"Dump", kCode<2005>, kBlockAlone, kDumpFill, "A text, then bytes that are dumped."},
    {"Management message", kCode<2013>, kMessageParts, kMessageFill,
     "A text at 36. The location block is there when the payload is longer than 32 bytes."},
    {"Managed object", kClass<56>, kObjectParts<kObjectRows>, kObjectFill<24>,
     "`ClassName` by the class identifier; the u16 at 186 is the size of the object, which `Hex` "
     "shows whole; a text behind the object. An object whose class has no name is shown without "
     "attributes."},
    {"Port statistics object", kClass<41>, kObjectParts<kPortStatsRows>, kObjectFill<320>,
     "Also class 42."},
    {"IP/TCP/iSCSI statistics object", kClass<43>, kObjectParts<kOffloadStatsRows>,
     kObjectFill<80>},
    {"TCP statistics object", kClass<44>, kObjectParts<kTcpStatsRows>, kObjectFill<64>},
    {"Management port statistics object", kClass<45>, kObjectParts<kManagementPortStatsRows>,
     kManagementPortFill<400>},
    {"Key=value", kCode<2020>, kBlockAlone, kKeyValueFill,
     "A text, then pairs with blanks between them: each is an element named by its key. A comma "
     "behind a value is dropped."},
};

#define MPUEVENT_MANAGED_OBJECT(ID, CLASS) {ID, #CLASS},
inline constexpr Code kClassIds[] = {MPUEVENT_MANAGED_OBJECTS(MPUEVENT_MANAGED_OBJECT)};
#undef MPUEVENT_MANAGED_OBJECT

inline constexpr Module kModule{
    29, "SMIS_Event",
    "The payload begins with a location block: line, file name and its NUL, function name up to "
    "the end of the block. Unless the severity is 1 the body ends with File, Func and Line. Module "
    "30 (SMIS IND) is decoded alike. The codes are the identifiers of managed-object classes.",
    kSections, kClassIds};

} // namespace Pegasus::mpu::smis
