#include "tools/mpuevent/Events.h"

#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus::tool {

void EventOptions::addOptions(CLI::App& app) {
    app.add_option("--format", format,
                   "Indented blocks (text), what and when on one line (brief), all on one line "
                   "(line), one JSON object a line (json), XML (xml) or CSV (csv)")
        ->check(CLI::IsMember(namesOf(kFormats)))
        ->capture_default_str();
    app.add_flag("--fields", fields, "The elements of the body one by one too (json, xml, csv)");
    app.add_flag("--trace", trace, "Show the library's trace lines on standard error");
    filter.addOptions(app);
}

bool EventOptions::prepare() const {
    if (fields && !rowOf(kFormats, format).fields) {
        complain("--fields: not with --format {}, but with json, xml or csv", format);
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
