// mpuevent summary: what captures hold, counted.
#include "formats/Summary.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/EventSink.h"
#include "tools/mpuevent/MetricsFile.h"

namespace Pegasus::tool {

namespace {

struct Options : GatherOptions {
    std::string metrics;
};

class Counter : public EventSink {
public:
    Counter(const FilterOptions& options, Output& output, MetricsFile& metrics)
        : EventSink(options, output, {.fieldBasis = metrics.counts()}), metrics_(metrics) {}

    Statistics statistics;

private:
    void add(const DecodedEvent& event) override {
        statistics.add(event);
        metrics_.add(event);
    }

    MetricsFile& metrics_;
};

Status summary(const Options& options) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    MetricsFile metrics(options.metrics);
    Counter counter(options.filter, output, metrics);
    const std::uint64_t faults = readSelected(options.inputs, options.filter, counter);
    metrics.addFaults(faults);
    rowOf(kSummaryFormats, options.format)
        .write(counter.statistics, faults, {output.coloured(), options.filter.times},
               output.text());
    return std::max(counter.finish(), metrics.finish());
}

} // namespace

Runner addSummary(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    addGatherOptions(app, *options, kSummaryFormats, TimeUse::Show);
    addMetrics(app, options->metrics);
    return [options] { return summary(*options); };
}

} // namespace Pegasus::tool
