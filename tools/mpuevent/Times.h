// The options that say what time stamps count, and times as people type them.
#pragma once

#include "formats/Clock.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Pegasus::tool {

using namespace formats;

// What a command does with times.
enum class TimeUse : std::uint8_t { Filter, Show, ShowEach };

// To be added before options whose values may be dates. --tz changes the zone of the process.
void addTimeOptions(CLI::App& app, TimeOptions& times, TimeUse use);

// What "5m" means, in seconds.
std::optional<std::uint64_t> durationFrom(std::string_view text);

// The Unix time that is meant by a date, "today", "yesterday", or "-2h": before now. Nothing for
// other texts.
std::optional<std::int64_t> momentFrom(std::string_view text, const TimeOptions& times);

} // namespace Pegasus::tool
