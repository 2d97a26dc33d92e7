// What the tables of the device-manager decoder say to people.
#pragma once

#include "decoders/protocol/SATA8P_Layouts.h"
#include "event/Catalogue.h"

namespace Pegasus::mpu::sata {

inline constexpr std::uint16_t kHeaderAt = 152;
inline constexpr std::uint16_t kBodyAt = 188; // versions 1 and 2
inline constexpr std::uint16_t kDataAt = 184; // version 3

// Which codes have a layout, written out.
struct CodeList {
    char text[96] = {};
    std::size_t size = 0;

    constexpr void add(std::string_view before, unsigned code) {
        for (char c : before)
            text[size++] = c;
        for (unsigned unit = code < 10 ? 1 : code < 100 ? 10 : 100; unit > 0; unit /= 10)
            text[size++] = static_cast<char>('0' + code / unit % 10);
    }
    constexpr void end() { text[size++] = '.'; }
    constexpr operator std::string_view() const { return {text, size}; }
};

template <v1::Object Object>
inline constexpr unsigned kFirstOf = [] {
    unsigned first = v1::kFirstNumber;
    for (const v1::Event& event : v1::kEvents) {
        if (event.object == Object)
            break;
        first = event.last + 1u;
    }
    return first;
}();
template <v1::Object Object>
inline constexpr CodeList kNumbersOf = [] {
    CodeList list;
    list.add("Numbers ", kFirstOf<Object>);
    for (const v1::Event& event : v1::kEvents)
        if (event.object == Object &&
            (&event + 1 == std::end(v1::kEvents) || (&event)[1].object != Object))
            list.add(" to ", event.last);
    list.end();
    return list;
}();
template <v2::Object Object>
inline constexpr CodeList kBugchecksOf = [] {
    CodeList list;
    for (unsigned code = 1; code < std::size(v2::kBugcheckObjects); ++code)
        if (v2::kBugcheckObjects[code] == Object)
            list.add(list.size == 0 ? "Code " : ", ", code);
    list.end();
    return list;
}();

// What the codes of the module mean: those up to 47 to a bugcheck, the others to version 1.
inline constexpr auto kCodes = [] {
    constexpr unsigned kBugcheckCodes = std::size(kBugcheckTexts) - 1;
    constexpr unsigned kNumbers = std::end(v1::kEvents)[-1].last + 1u - v1::kFirstNumber;
    std::array<Code, kBugcheckCodes + kNumbers> codes{};
    std::size_t at = 0;
    for (; at < kBugcheckCodes; ++at)
        codes[at] = {static_cast<std::uint32_t>(at + 1), kBugcheckTexts[at + 1]};
    unsigned number = v1::kFirstNumber;
    for (const v1::Event& event : v1::kEvents)
        for (; number <= event.last; ++number)
            codes[at++] = {number, event.name};
    return codes;
}();

template <std::uint32_t Number>
inline constexpr Key kNumberKeys[] = {{149, 1, 1}, {kHeaderAt + 4, 4, Number}};
template <std::uint8_t Version, std::uint32_t First, std::uint32_t Second>
inline constexpr Key kKeys[] = {
    {149, 1, Version}, {kHeaderAt, 4, First}, {kHeaderAt + 4, 4, Second}};

template <const auto&... Rows>
inline constexpr Part kFrame[] = {{"Event header and body", Rows, kHeaderAt}...};

// Version 3: what stands in the slots of a record, by protocol. How sure their places are is the
// event's matter.
template <const auto& Rows, Provenance M>
inline constexpr auto kPlaced = []<std::size_t... I>(std::index_sequence<I...>) {
    const auto placed = [](Row row) {
        row.provenance = M;
        return row;
    };
    return std::array{placed(Rows[I])...};
}
(std::make_index_sequence<std::size(Rows)>());

enum Protocol : std::uint8_t { kScsi, kSata };
enum Slot : std::uint8_t { kCommand, kOutcome, kStrings };
template <Provenance M>
inline constexpr Part kSlots[2][3] = {
    {{"CDB", kPlaced<v3::kCdbRows, M>, kDataAt},
     {"Sense data", kPlaced<v3::kSenseRows, M>, kDataAt},
     {"Inquiry strings", kPlaced<v3::kScsiStringRows, M>, kDataAt}},
    {{"Command FIS", kPlaced<v3::kCommandFisRows, M>, kDataAt},
     {"Status FIS", kPlaced<v3::kStatusFisRows, M>, kDataAt},
     {"Inquiry strings", kPlaced<v3::kSataStringRows, M>, kDataAt}},
};

// The pieces of an event and the rows of the header behind them.
struct PartList {
    Part parts[12] = {};
    std::size_t size = 0;

    constexpr void add(const Part& part, unsigned at = 0) {
        parts[size] = part;
        parts[size++].at = static_cast<std::uint16_t>(part.at + at);
    }
    constexpr operator std::span<const Part>() const { return {parts, size}; }
};
constexpr void addPiece(PartList& list, v3::Piece piece, Protocol protocol) {
    const auto& chosen = kSlots<Provenance::Assumed>[protocol];
    const auto& fits = kSlots<Provenance::Inferred>[protocol];
    switch (piece) {
    case v3::kSlots:
        list.add(chosen[kCommand], v3::kXportCommand);
        return list.add(chosen[kOutcome], v3::kXportOutcome);
    case v3::kSataStatus:
        return list.add(chosen[kOutcome], v3::kSataErrorStatus);
    case v3::kScsiSense:
        return list.add(fits[kOutcome], v3::kScsiErrorSense);
    case v3::kSataCommand:
    case v3::kScsiCommand:
        return list.add(fits[kCommand], v3::kErrorCommand);
    case v3::kSataStrings:
        return list.add(fits[kStrings], v3::kSataErrorStrings);
    case v3::kScsiStrings:
        return list.add(fits[kStrings], v3::kScsiErrorStrings);
    case v3::kIdentifyStrings:
        return list.add(chosen[kStrings], v3::kIdentifyStringsAt);
    case v3::kUnitStrings:
        return list.add(chosen[kStrings], v3::kUnitStringsAt);
    default:
        return list.add({"Class data", v3::Pieces::rows[piece], kDataAt});
    }
}
constexpr const v3::Event& eventOf(unsigned eventClass, unsigned identifier) {
    return *std::find_if(std::begin(v3::kEvents), std::end(v3::kEvents), [&](const v3::Event& e) {
        return e.eventClass == eventClass &&
               (e.identifier == identifier || e.identifier == v3::kAny);
    });
}
template <unsigned Class, unsigned Identifier, Protocol P>
inline constexpr PartList kPartsOf = [] {
    PartList list;
    for (const v3::Piece* piece = eventOf(Class, Identifier).pieces; *piece != v3::kEnd; ++piece)
        addPiece(list, *piece, P);
    if (Class < 4) {
        if (Identifier != 15 && Identifier != 16)
            list.add({"Event header", v3::kPathRows, kHeaderAt});
        list.add({"Event header", v3::kAdapterRows, kHeaderAt});
    }
    list.add({"Event header", v3::kMissedRows, kHeaderAt});
    return list;
}();

inline constexpr std::string_view kSectors("\0\0\0\0\x74\x70\x6D\xB0", 8);
inline constexpr std::string_view kTime("\0\0\0\x0C\0\0\1\xF4", 8);
inline constexpr std::string_view kWordZero("\0\0\0\0", 4);
inline constexpr std::string_view kWordOne("\0\0\0\1", 4);
inline constexpr std::string_view kReadFis("\x27\x80\x25\0\x10\x20\x30\x40\0\0\0\0\x08\0\0\0", 16);
inline constexpr std::string_view kBadFis("\x34\x40\x51\x40\x10\x20\x30\x40\0\0\0\0\x08\0\0\0", 16);
inline constexpr std::string_view kReadCdb("\x28\0\0\x10\x20\x30\0\0\x08\0\0\0\0\0\0\0\0\0\0\x0A",
                                           20);
inline constexpr std::string_view kMediumSense("\xF0\0\x03\0\x10\x20\x30\x0A\0\0\0\0\x11", 13);

inline constexpr Fill kPciFill[] = {{kBodyAt + 4, "\0\0\x01\0"sv}};
inline constexpr Fill kIdentityFill[] = {{kBodyAt + 8, kSectors}};
inline constexpr Fill kSegmentFill[] = {
    {kBodyAt + 16, "\x01\x20\0\0\0\0\x10\0\x01\x20\x40\0\0\0\x08\0\0\0\0\0"sv}};
inline constexpr Fill kRingFill[] = {{kBodyAt + 16, "\x80\0\0\x11\x80\0\0\x12\x80\0\0\x13"sv}};
inline constexpr Fill kXportSataFill[] = {{kDataAt + v3::kXportProtocol, kWordZero},
                                          {kDataAt + v3::kXportCommand, kReadFis},
                                          {kDataAt + v3::kXportOutcome, kBadFis},
                                          {kDataAt + 104, kWordOne},
                                          {kDataAt + 108, kTime}};
inline constexpr Fill kXportScsiFill[] = {{kDataAt + v3::kXportProtocol, kWordOne},
                                          {kDataAt + v3::kXportCommand, kReadCdb},
                                          {kDataAt + v3::kXportOutcome, kMediumSense},
                                          {kDataAt + 108, kTime}};
inline constexpr Fill kSataErrorFill[] = {{kDataAt + v3::kSataErrorStatus, kBadFis},
                                          {kDataAt + v3::kErrorCommand, kReadFis},
                                          {kDataAt + 16, kWordZero},
                                          {kDataAt + 24, kSectors}};
inline constexpr Fill kScsiErrorFill[] = {{kDataAt + v3::kScsiErrorSense, kMediumSense},
                                          {kDataAt + v3::kErrorCommand, kReadCdb},
                                          {kDataAt + 16, kWordOne},
                                          {kDataAt + 24, kSectors}};
inline constexpr Fill kIdentifyFill[] = {{kDataAt + v3::kIdentifyProtocol, kWordZero}};
inline constexpr Fill kUnitFill[] = {{kDataAt + v3::kUnitProtocol, kWordOne},
                                     {kDataAt + 32, kSectors}};

template <v1::Object Object>
inline constexpr Part kNumberedParts[] = {
    {"Event header and body", v1::Objects::rows[Object], kHeaderAt}};
template <v1::Object Object>
constexpr Section numbered(std::string_view title, std::span<const Fill> fills = {}) {
    return {title, kNumberKeys<kFirstOf<Object>>, kNumberedParts<Object>, fills,
            kNumbersOf<Object>};
}
template <v2::Object Object>
inline constexpr Part kFailedParts[] = {{"Event header and body", v2::kBugcheckRows, kHeaderAt},
                                        {"Object", v2::Objects::rows[Object], kHeaderAt}};
inline constexpr Part kTransferParts[] = {
    kFailedParts<v2::kTransfer>[0],
    kFailedParts<v2::kTransfer>[1],
    { "Segment", v2::kSegmentRows, kHeaderAt + v2::kListAt },
};
template <v2::Object Object, std::uint32_t Code>
constexpr Section failed(std::string_view title) {
    static_assert(v2::kBugcheckObjects[Code] == Object);
    return {title, kKeys<2, 3, Code>, kFailedParts<Object>, {}, kBugchecksOf<Object>};
}
template <std::uint32_t Class, std::uint32_t Identifier, Protocol P = kSata>
constexpr Section classed(std::string_view title, std::span<const Fill> fills = {},
                          std::string_view note = {}) {
    return {title, kKeys<3, Class, Identifier>, kPartsOf<Class, Identifier, P>, fills, note};
}

inline constexpr std::string_view kXportNote =
    "Protocol 0 (SATA) has FIS as command and outcome, shown when their types are 0x27 and 0x34; "
    "any other has a CDB, shown when its length is 1 to 16, and sense data, shown when the "
    "response code is 0x70 or 0x71. Error_Cause or Sense_Key is \"Unknown\" without an outcome; "
    "Error_Cause precedes a status FIS.";

inline constexpr Section kSections[] = {
    numbered<v1::kAddress>("Version 1: address"),
    numbered<v1::kInterrupt>("Version 1: interrupt"),
    numbered<v1::kNumbered>("Version 1: event"),
    numbered<v1::kPlace>("Version 1: place of a drive"),
    numbered<v1::kRepeats>("Version 1: repeated events"),
    numbered<v1::kStatistics>("Version 1: statistics"),
    numbered<v1::kTask>("Version 1: task"),
    numbered<v1::kAdapter>("Version 1: adapter registers"),
    numbered<v1::kResponse>("Version 1: response"),
    numbered<v1::kCommand>("Version 1: command"),
    numbered<v1::kValue>("Version 1: value"),
    numbered<v1::kBar>("Version 1: base address register"),
    numbered<v1::kCscb>("Version 1: command control block"),
    numbered<v1::kRequest>("Version 1: drive request packet"),
    numbered<v1::kQueue>("Version 1: queue"),
    numbered<v1::kPhysicalDrive>("Version 1: physical drive"),
    numbered<v1::kAdapterNumber>("Version 1: adapter number"),
    numbered<v1::kRegion>("Version 1: region descriptor"),
    numbered<v1::kOperation>("Version 1: operation"),
    numbered<v1::kPci>("Version 1: PCI error", kPciFill),
    numbered<v1::kIdentity>("Version 1: identity of a drive", kIdentityFill),
    numbered<v1::kVector>("Version 1: interrupt vector"),
    numbered<v1::kChannel>("Version 1: channel registers"),
    numbered<v1::kModel>("Version 1: model"),
    numbered<v1::kAlignment>("Version 1: structure"),
    numbered<v1::kResponseQueue>("Version 1: response queue"),
    numbered<v1::kCounters>("Version 1: counters"),
    numbered<v1::kKey>("Version 1: key"),
    numbered<v1::kAsync>("Version 1: asynchronous event"),
    numbered<v1::kParameter>("Version 1: parameter"),

    {"Version 2: adapter not found", kKeys<2, 1, 1>,
     kFrame<v2::kHardwareRows, v2::kIdSelectRows, v2::kCountRows>},
    {"Version 2: adapter error", kKeys<2, 1, 2>,
     kFrame<v2::kHardwareRows, v2::kPciRows, v2::kCountRows>, kPciFill,
     "All hardware events but code 1. PCI_Error_Cause follows the code."},
    {"Version 2: drive",
     kKeys<2, 2, 6>,
     kFrame<v2::kDriveRows, v2::kCountRows>,
     {},
     "Codes 1, 2, 5 and 6."},
    {"Version 2: drive command",
     kKeys<2, 2, 7>,
     kFrame<v2::kDriveRows, v2::kCommandRows, v2::kCountRows>,
     {},
     "Codes 3, 4, 7, 8 and 10."},
    {"Version 2: asynchronous drive event",
     kKeys<2, 2, 9>,
     kFrame<v2::kDriveRows, v2::kAsyncRows, v2::kCountRows>,
     {},
     "Code 9."},
    failed<v2::kFlags, 1>("Version 2: bugcheck"),
    failed<v2::kReturned, 4>("Version 2: bugcheck with a status"),
    failed<v2::kSemaphore, 3>("Version 2: semaphore bugcheck"),
    failed<v2::kConfiguration, 5>("Version 2: configuration bugcheck"),
    failed<v2::kPcixInterrupt, 6>("Version 2: PCI-X interrupt bugcheck"),
    failed<v2::kAddress, 7>("Version 2: address bugcheck"),
    failed<v2::kDriveCommand, 8>("Version 2: drive command bugcheck"),
    failed<v2::kAsyncData, 12>("Version 2: asynchronous event bugcheck"),
    failed<v2::kRequest, 13>("Version 2: drive request bugcheck"),
    failed<v2::kInterrupt, 14>("Version 2: interrupt bugcheck"),
    failed<v2::kQueue, 16>("Version 2: message queue bugcheck"),
    failed<v2::kDriveBlock, 23>("Version 2: drive control block bugcheck"),
    {"Version 2: transfer bugcheck", kKeys<2, 3, 33>, kTransferParts, kSegmentFill,
     "Codes 33 and 35. Up to eight segments follow the counts; an address of 0 ends them."},
    failed<v2::kPcix, 36>("Version 2: PCI-X bugcheck"),
    {"Version 2: response ring bugcheck", kKeys<2, 3, 43>, kFailedParts<v2::kRing>, kRingFill,
     "Code 43. The ring's entries follow as Entry_0, Entry_1 ... to the end of the payload."},
    failed<v2::kEvent, 44>("Version 2: event bugcheck"),
    failed<v2::kEventType, 45>("Version 2: event type bugcheck"),
    failed<v2::kInformation, 46>("Version 2: bugcheck information"),
    failed<v2::kInvalid, 47>("Version 2: invalid bugcheck"),

    classed<1, 1>("Version 3: SAS status", kXportSataFill, kXportNote),
    classed<1, 2, kScsi>("Version 3: command timeout", kXportScsiFill, kXportNote),
    classed<1, 3, kScsi>("Version 3: command exceeded allotted time", kXportScsiFill, kXportNote),
    classed<1, 4, kScsi>("Version 3: IOC status", kXportScsiFill, kXportNote),
    classed<1, 5>("Version 3: IOC log information", kXportSataFill, kXportNote),
    classed<1, 15>("Version 3: SAS port"),
    classed<1, 16>("Version 3: SAS zero reply"),
    classed<2, 10>("Version 3: SATA error", kSataErrorFill,
                   "The FIS are shown as in the XPort events."),
    classed<2, 11, kScsi>("Version 3: SCSI error", kScsiErrorFill,
                          "CDB and sense data are shown as in the XPort events."),
    classed<2, 12>("Version 3: reset LU"),
    classed<2, 13>("Version 3: identify data invalid", kIdentifyFill,
                   "A protocol other than 0 (SATA) has the inquiry strings of the SCSI error."),
    classed<3, 7>("Version 3: target attention"),
    classed<3, 8>("Version 3: LUN attention"),
    classed<3, 9, kScsi>("Version 3: LU attention", kUnitFill,
                         "Protocol 0 (SATA) has the inquiry strings of the SATA error."),
    classed<4, 14>("Version 3: bugcheck"),
    classed<5, 17>("Version 3: trace time"),
};

inline constexpr Module kModule{
    6, "SATA8P_Event",
    "Three generations of records: payload version 3, payload version 2, and any other, which is "
    "version 2 when the word at 160 is 0xFFFFFFFF and version 1 when it is not. Codes up to 47 "
    "are version 2's bugchecks, those from 101 on the event numbers of version 1; a number "
    "without a meaning shows the first 64 bytes of the payload as Data. Elements have no blank "
    "between them.",
    kSections, kCodes};

} // namespace Pegasus::mpu::sata
