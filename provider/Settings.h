// What the provider is told: one file of "name = value" lines, documented in
// provider/mpuevent-provider.conf.
#pragma once

#include "capture/Capture.h"

#include <chrono>
#include <istream>
#include <string>

namespace Pegasus::provider {

// What the firmware's time stamps are taken for.
enum class Clock : std::uint8_t {
    None,   // nothing is known of them
    Unix,   // seconds since 1970, UTC
    Uptime, // seconds since the controller started
};

struct Settings {
    std::string spool = "/var/spool/mpuevent"; // a file or a directory
    capture::Framing framing = capture::Framing::Message;
    std::chrono::milliseconds interval{1000}; // from one look at the spool to the next
    std::size_t maxEvents = 10000;
    std::size_t maxBytes = 16 * 1024 * 1024; // of all records held
    unsigned alertSeverity = 3;              // lowest event type that is sent, 0 for none
    Clock clock = Clock::None;
    std::string logName = "Controller Event Log";
    std::string owningEntity = "MPUEvent";
};

// Settings that are missing keep their defaults, and so do wrong ones, which are reported as
// "line n: ...".
Settings readSettings(std::istream& in, const capture::FaultHandler& report);

} // namespace Pegasus::provider
