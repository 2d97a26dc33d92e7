// mpuevent decode: the events of captures, one by one.
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Events.h"
#include "tools/mpuevent/Jobs.h"
#include "tools/mpuevent/Numbers.h"
#include "tools/mpuevent/Selector.h"

#include <thread>

namespace Pegasus::tool {

namespace {

constexpr unsigned kMaxJobs = 256;

struct Options {
    Inputs inputs;
    EventOptions events;
    std::string output = "-";
    unsigned jobs = 1;
};

Status decode(const Options& options) {
    if (!options.inputs.spares(options.output) || !options.events.prepare())
        return kUsage;
    const Part part = options.inputs.part();
    const TimeStyle style = options.events.filter.times.style;
    const bool looksBack = style == TimeStyle::Relative || style == TimeStyle::Delta;
    if (looksBack && !part.isWhole()) {
        complain("--part: not with --time relative or delta");
        return kUsage;
    }
    Output output;
    if (!output.open(options.output))
        return kFailed;
    const auto by = [&](auto&& writer) {
        readSelected(options.inputs, options.events.filter, writer);
        return writer.finish();
    };
    const unsigned jobs = options.jobs ? options.jobs : std::thread::hardware_concurrency();
    if (jobs <= 1 || looksBack)
        return by(EventWriter(options.events, output, part));
    return by(ParallelWriter(options.events, std::min(jobs, kMaxJobs), output, part));
}

} // namespace

Runner addDecode(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->events.addOptions(app);
    options->inputs.addPart(app);
    addOutput(app, options->output);
    addNumber(app, "--jobs,-j", options->jobs, "Number of decoding threads; 0 = one per CPU", 0,
              kMaxJobs);
    return [options] { return decode(*options); };
}

} // namespace Pegasus::tool
