#include "tools/mpuevent/Events.h"

#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::tool {

namespace {

// "json, xml, csv"
std::string formatsWithFields() {
    std::string names;
    for (const Format& row : kFormats)
        if (row.hasFields)
            names.append(names.empty() ? "" : ", ").append(row.name);
    return names;
}

} // namespace

void EventOptions::addOptions(CLI::App& app, bool endless) {
    app.add_option("--format", format, "Output format. " + descriptionsOf(kFormats))
        ->check(CLI::IsMember(namesOf(kFormats)))
        ->capture_default_str();
    app.add_flag("--fields", fields,
                 "Also list the body's elements individually (" + formatsWithFields() + ")");
    app.add_flag("--trace", trace, "Show the library's trace lines on standard error");
    filter.addOptions(app, endless);
}

bool EventOptions::prepare() const {
    if (fields && !rowOf(kFormats, format).hasFields) {
        complain("--fields: not with --format {}; use one of {}", format, formatsWithFields());
        return false;
    }
    if (trace) {
        ProviderTraceServices::ptsSetTraceStream(stderr);
        ProviderTraceServices::ptsSetTraceSuppressForPid(0);
    }
    return true;
}

std::unique_ptr<Printer> EventOptions::printer(const Output& output) const {
    return rowOf(kFormats, format).make({fields, output.coloured()});
}

} // namespace Pegasus::tool
