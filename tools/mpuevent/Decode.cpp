// mpuevent decode: the events of captures, one by one.
#include "platform/trace/ProviderTraceServices.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Filter.h"
#include "tools/mpuevent/Inputs.h"
#include "tools/mpuevent/Printer.h"

#include <algorithm>

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::string format = "text";
    std::string output = "-";
    bool trace = false;
};

// Decodes and writes one message after the other.
struct EventWriter : Sink {
    EventWriter(const Options& options, Output& to)
        : filter(options.filter), left(options.filter.limit.value_or(UINT64_MAX)),
          printer(rowOf(kFormats, options.format).make()), output(to) {}

    bool take(const Message& message) override {
        if (const std::unique_ptr<Avrel_Event> event = filter.decode(message)) {
            printer->print(*event, output.text());
            --left;
        }
        return output.proceed() && left != 0;
    }
    void complaint(Status what, const std::string& text) override {
        status = std::max(status, what);
        output.flush();
        complain(text);
    }

    const Filter filter;
    std::uint64_t left; // of the events to write
    const std::unique_ptr<Printer> printer;
    Output& output;
    Status status = kFine;
};

Status decode(const Options& options) {
    if (options.trace) {
        ProviderTraceServices::ptsSetTraceStream(stderr);
        ProviderTraceServices::ptsSetTraceSuppressForPid(0);
    }
    if (options.output != "-")
        if (const std::string* input = options.inputs.find(options.output)) {
            complain("--output: {} is an input too ({})", options.output, *input);
            return kUsage;
        }
    Output output;
    if (!output.open(options.output))
        return kFailed;
    EventWriter writer(options, output);
    writer.printer->begin(output.text());
    options.inputs.read(writer);
    writer.printer->end(output.text());
    return std::max(writer.status, output.finish());
}

} // namespace

Runner addDecode(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->filter.addOptions(app);
    app.add_option("--format", options->format,
                   "Indented blocks (text), one line an event (line) or one JSON object a line "
                   "(json)")
        ->check(CLI::IsMember(namesOf(kFormats)))
        ->capture_default_str();
    app.add_option("--output", options->output, "Where to write; \"-\": standard output")
        ->type_name("FILE")
        ->capture_default_str();
    app.add_flag("--trace", options->trace, "Show the library's trace lines on standard error");
    return [options] { return decode(*options); };
}

} // namespace Pegasus::tool
