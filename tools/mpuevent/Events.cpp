#include "tools/mpuevent/Events.h"

#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::tool {

namespace {

// "json, xml, csv"
std::string formatsWith(bool Format::*option) {
    std::string names;
    for (const Format& row : kFormats)
        if (row.*option)
            names.append(names.empty() ? "" : ", ").append(row.name);
    return names;
}

} // namespace

void EventOptions::addOptions(CLI::App& app, bool endless) {
    app.add_option("--format", format, "Output format. " + descriptionsOf(kFormats))
        ->check(CLI::IsMember(namesOf(kFormats)))
        ->capture_default_str();
    app.add_flag("--fields", fields,
                 "Also list the body's elements individually (" + formatsWith(&Format::hasFields) +
                     ")");
    app.add_option("--columns", columns,
                   "Show these fields of the event and elements of its body, with commas between, "
                   "one column each (" +
                       formatsWith(&Format::hasColumns) + ")")
        ->type_name("COLUMNS")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_flag("--raw", raw, "Also show the payload in hexadecimal");
    app.add_flag("--origin", origin,
                 "Also tell the file each event comes from, and where in it: the offset in its "
                 "messages, after unpacking and decoding of text");
    app.add_flag("--known-only", knownOnly,
                 "Leave out what is read from an assumed layout; the event's number and payload "
                 "stand for it");
    app.add_flag("--trace", trace, "Show the library's trace lines on standard error");
    filter.addOptions(app, TimeUse::ShowEach, endless);
}

bool EventOptions::prepare() const {
    const auto suits = [this](bool given, const char* name, bool Format::*option) {
        if (!given || rowOf(kFormats, format).*option)
            return true;
        complain("{}: not with --format {}; use one of {}", name, format, formatsWith(option));
        return false;
    };
    if (!suits(fields, "--fields", &Format::hasFields) ||
        !suits(!columns.empty(), "--columns", &Format::hasColumns))
        return false;
    if (trace) {
        ProviderTraceServices::ptsSetTraceStream(stderr);
        ProviderTraceServices::ptsSetTraceSuppressForPid(0);
    }
    return true;
}

PrintOptions EventOptions::printing(const Output& output) const {
    return {fields, raw, output.coloured(), filter.times.epoch, origin, columns};
}

} // namespace Pegasus::tool
