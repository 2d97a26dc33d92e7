// The table of the AWR module, whose records have no fixed layout.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::awr {

void putTree(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kTree{
    putTree,
    "One item: a type (u32), the length of its content (u32) and the content. Type 0 is a text, "
    "which becomes an entry `_`; 1 bytes, which are dumped in lines of 16, each an entry named by "
    "the offset of its first byte, as `_0010`; 2 a container of items; 3 the title.",
    {},
    "\0\0\0\2\0\0\0\x64" // container of 100 bytes
    "\0\0\0\3\0\0\0\x0C"
    "Fan warning\0"
    "\0\0\0\0\0\0\0\x11"
    "Fan 2 turns slow\0"
    "\0\0\0\2\0\0\0\x11" // container inside it
    "\0\0\0\0\0\0\0\x09"
    "2100 rpm\0"
    "\0\0\0\1\0\0\0\x16"
    "<Fan=2;\x02\x08\x34\xFF|speed&rpm\0"sv};
// Told to people: putTree() writes all of it.
inline constexpr CustomPiece kSummary{putTree, "the first text"};

inline constexpr EventRow kEventRows[] = {
    {kAny, "the last item of type 3, or the event's number", kSummary, {kTree}}};
inline constexpr EventTable kEvents{.rows = kEventRows, .minor = u16(150)};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{9, "AWR8P_Event", {}, kTables};

} // namespace Pegasus::mpu::awr
