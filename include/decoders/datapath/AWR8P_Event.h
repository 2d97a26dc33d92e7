// Decoder of the AWR module, whose records describe themselves: a tree of typed items, each with
// its length in front.
#pragma once

#include "event/AvrelEvent.h"

#include <string_view>

namespace Pegasus {

// Header of an item; the content is after it. Big-endian. A negative length means no content.
//
//     | type | length | content                                        |
//                     | type | length | content | type | length | ...  |   of a container
struct awrEvtHdr_s {
    mpu::Big<std::uint32_t> type;   // 0 text, 1 bytes, 2 container, 3 name of the event
    mpu::Big<std::uint32_t> length; // bytes of content, signed
};
static_assert(sizeof(awrEvtHdr_s) == 8);

// The payload (offset 152) is one item, whatever the event identifier. Body of entries as
// AvrelEvent::addEntry() writes them: "_" for a text, "_0000", "_0010" ... for the lines of a
// dump. The first text is the summary, the event's name the title.
//
// An item ends with its container at the latest, the outermost one with the record. A negative
// length ends the container around it, and so do fewer bytes than a header has. Containers inside
// 32 others are passed over, items of another type always.
class MPUEVENT_EXPORT AWR8P_Event : public AvrelEvent {
public:
    AWR8P_Event(const EmpEvLogMsg_s* record, int length);
    ~AWR8P_Event() override;

    // Both add entries to a finished event, through addEntry(). The memory behind `item` holds its
    // content, which has at most 65535 bytes.
    void awr8p_parse_evt(const awrEvtHdr_s* item);
    void awr8p_dump_bin(const awrEvtHdr_s* item);

private:
    std::uint32_t summarySet_ = 0;
};

} // namespace Pegasus
