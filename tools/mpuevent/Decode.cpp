// mpuevent decode: the events of captures, one by one.
#include "platform/trace/ProviderTraceServices.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Inputs.h"
#include "tools/mpuevent/Printer.h"

#include <algorithm>

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    std::string format = "text";
    std::string output = "-";
    bool trace = false;
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
    const std::unique_ptr<Printer> printer = rowOf(kFormats, options.format).make();
    printer->begin(output.text());
    const Status read = options.inputs.read(
        [&](const Message& message) {
            printer->print(*message.decode(), output.text());
            return output.proceed();
        },
        [&] { output.flush(); });
    printer->end(output.text());
    return std::max(read, output.finish());
}

} // namespace

Runner addDecode(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
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
