// mpuevent summary: what captures hold, counted.
#include "formats/Summary.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/EventSink.h"

namespace Pegasus::tool {

namespace {

class Counter : public EventSink {
public:
    using EventSink::EventSink;

    Statistics statistics;

private:
    void add(const DecodedEvent& event) override { statistics.add(event); }
};

Status summary(const GatherOptions& options) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    Counter counter(options.filter, output);
    const std::uint64_t faults = readSelected(options.inputs, options.filter, counter);
    rowOf(kSummaryFormats, options.format)
        .write(counter.statistics, faults, {output.coloured(), options.filter.times},
               output.text());
    return counter.finish();
}

} // namespace

Runner addSummary(CLI::App& app) {
    const auto options = std::make_shared<GatherOptions>();
    addGatherOptions(app, *options, kSummaryFormats, TimeUse::Show);
    return [options] { return summary(*options); };
}

} // namespace Pegasus::tool
