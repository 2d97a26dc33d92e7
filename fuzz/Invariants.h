// What holds for every record, whatever its bytes are. Used by the fuzz targets and by tests.
#pragma once

#include "event/Dispatch.h"
#include "event/RecordView.h"
#include "fuzz/Target.h"
#include "tests/RecordBuilder.h"

#include <algorithm>
#include <array>

namespace Pegasus::fuzz {

using test::utf8;

// What a message can carry after its header.
inline constexpr std::size_t kMaxRecord = 0xFFFF - mpu::message_header::kSize;

// All texts of an event together have at most kFixedOutput + kOutputPerByte * extent characters
// (bytes of UTF-8), the extent being max(record length, 152 + evStructLength). The fixed part is
// the widest layout: its tags, names and numbers. docs/reliability.md shows what costs most.
inline constexpr std::size_t kFixedOutput = 16 * 1024;
inline constexpr std::size_t kOutputPerByte = 32;

// Plain on purpose: code points one by one, by the definition of UTF-8.
inline bool isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto at = [&](std::size_t k) {
            return i + k < text.size() ? static_cast<unsigned char>(text[i + k]) : 0u;
        };
        const unsigned first = at(0);
        const std::size_t length = first < 0x80             ? 1
                                   : (first & 0xE0) == 0xC0 ? 2
                                   : (first & 0xF0) == 0xE0 ? 3
                                   : (first & 0xF8) == 0xF0 ? 4
                                                            : 0;
        if (length == 0)
            return false;
        std::uint32_t point = length == 1 ? first : first & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k) {
            if ((at(k) & 0xC0) != 0x80)
                return false;
            point = point << 6 | (at(k) & 0x3F);
        }
        constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (point < least[length] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

// All that an event says, independent of it.
struct Said {
    std::array<std::string, 10> texts;
    std::array<std::uint32_t, 7> numbers;

    bool operator==(const Said&) const = default;
};

inline Said said(Avrel_Event& event) {
    return {{utf8(event.getEnclosureSerialNumber()), utf8(event.getControllerSerialNumber()),
             utf8(event.getSource()), utf8(event.getCategory()), utf8(event.getEventType()),
             utf8(event.getEventID()), utf8(event.getSummary()), utf8(event.getBody()),
             std::string(nameOf(event.getBasis().layout)), utf8(event.str())},
            {event.getControllerSlotID(), event.getEventLogInstanceNumber(), event.getSequenceID(),
             event.getTimestamp(), static_cast<const Avrel_Event&>(event).getEventType(),
             event.getBasis().missingBytes, event.getBasis().unreadBytes}};
}

inline void requireBounded(const Said& event, std::size_t extent) {
    std::size_t size = 0;
    for (const std::string& text : event.texts) {
        require(isUtf8(text), "texts are valid UTF-8");
        size += text.size();
    }
    size -= event.texts.back().size(); // str() has all of it once more
    require(size <= kFixedOutput + kOutputPerByte * extent,
            std::to_string(size) + " characters of output for a record of " +
                std::to_string(extent) + " bytes");
}

// Decodes `record` as a message's; cut to what a message can carry.
inline Said requireDecodes(Bytes record) {
    record = record.first(std::min(record.size(), kMaxRecord));
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + record.size()));

    std::unique_ptr<Avrel_Event> event;
    {
        const ExactCopy wire(record);
        Avrel_memory_istream in(Bytes(wire).data(), record.size());
        const MPUEvent message(header, in);
        event.reset(message.create_Avrel_Event());
        const std::unique_ptr<Avrel_Event> again(message.create_Avrel_Event());
        require(event && again, "a message with a record gives an event");
        require(said(*event) == said(*again), "a message decodes alike every time");
    }
    const Said whole = said(*event); // neither message nor bytes live any more

    // The decoder alone, on memory of just the readable extent: the dispatcher would hide what it
    // throws, and its copy what it writes.
    const std::size_t extent =
        std::max(record.size(),
                 sizeof(EmpEvLogMsg_s) + mpu::RecordView(record.data(), record.size()).u16(144));
    requireBounded(whole, extent);
    std::string padded(characters(record));
    padded.resize(extent);
    ExactCopy memory(bytesOf(padded));
    const auto* logged = reinterpret_cast<const EmpEvLogMsg_s*>(memory.data());
    if (const DecoderFactory factory = mpu::decoderOf(logged->source)) {
        event.reset(factory(logged, static_cast<int>(record.size())));
        require(characters(memory) == padded, "a record is not modified");
        std::memset(memory.data(), 0xDB, extent);
        require(event && said(*event) == whole, "an event needs no byte of its record");
    }
    return whole;
}

} // namespace Pegasus::fuzz
