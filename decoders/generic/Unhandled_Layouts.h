// The table of the modules whose records are dumped.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::unhandled {

void putPayload(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kPayload{putPayload, "The payload as `Hex`.", {}, "\x01\x02\xFF"sv};
// For people, as the title is: both have the module's own words.
inline constexpr CustomPiece kSummary{putPayload, "`Unhandled Event by` and the module"};

inline constexpr EventRow kEventRows[] = {{kAny, "the event's number", kSummary, {kPayload}}};
inline constexpr EventTable kEvents{.rows = kEventRows, .minor = u16(150)};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
constexpr Module module(std::uint8_t source, std::string_view decoder) {
    return {source, decoder, {}, kTables};
}

} // namespace Pegasus::mpu::unhandled
