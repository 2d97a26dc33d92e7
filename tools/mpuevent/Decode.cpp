// mpuevent decode: the events of captures, one by one.
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Events.h"

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    EventOptions events;
    std::string output = "-";
};

Status decode(const Options& options) {
    if (!options.inputs.spares(options.output) || !options.events.prepare())
        return kUsage;
    Output output;
    if (!output.open(options.output))
        return kFailed;
    EventWriter writer(options.events, output);
    options.inputs.read(writer);
    return writer.finish();
}

} // namespace

Runner addDecode(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->events.addOptions(app);
    addOutput(app, options->output);
    return [options] { return decode(*options); };
}

} // namespace Pegasus::tool
