// The table of the VPI module, whose records are text.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::vpi {

void putFirstLine(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFirstLine{putFirstLine, "the first line"};
void putLines(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kLines{
    putLines,
    "Lines of text. One with `key=value` pairs becomes a `Values` group, another one `Text1`, "
    "`Text2` ... A value ends at a comma or blank.",
    {},
    "Link monitor report\n"
    "port id=3, state = up,  speed=1000\n"
    "retrained twice\n"
    "errors=0"};

inline constexpr EventRow kEventRows[] = {{1, "General message", kFirstLine, {kLines}}};
inline constexpr EventTable kEvents{.rows = kEventRows, .minor = u16(150)};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{10, "VPI8P_Event", "Event identifier 1; all others are dumped.",
                                kTables};

} // namespace Pegasus::mpu::vpi
