// An event as the system's logs take it: by itself, each of its fields under a name.
#pragma once

#include "formats/Printer.h"

namespace Pegasus::formats {

// Fields of the systemd journal: MESSAGE, PRIORITY, SYSLOG_IDENTIFIER, and MPUEVENT_SEQUENCE_ID and
// so on for the columns that say something. Holds scratch memory.
class JournalFields {
public:
    explicit JournalFields(const PrintOptions& options);
    // "NAME=value", where the value may hold anything. Valid until the next call.
    const std::vector<std::string>& of(const DecodedEvent& event);

private:
    void add(std::string_view prefix, std::string_view value);

    std::vector<const Column*> columns_;
    std::vector<std::string> names_; // of those, with "="
    std::vector<std::string> fields_;
    mpu::LineWriter text_;
};

// Who sends messages of syslog.
struct SyslogSender {
    std::string host;
    std::string process;
};

// Messages of RFC 5424, without anything between them. The structured data has the columns that say
// something. A message has at most 8,000 bytes for ordinary texts; where the body would make it
// longer, the body's size is told instead. Other texts are cut after 1,024 bytes.
std::unique_ptr<Printer> makeSyslogPrinter(const PrintOptions& options, const SyslogSender& sender);

} // namespace Pegasus::formats
