// mpuevent summary: what captures hold, counted.
#include "formats/Summary.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Selector.h"

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::string format = "text";
    std::string output = "-";
};

class Counter : public SerialSink {
public:
    Counter(const FilterOptions& options, Output& output)
        : SerialSink(output), filter_(options.ofSink()),
          limit_(options.ofSink().limit.value_or(UINT64_MAX)) {}
    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message))
            statistics.add(*event);
        return statistics.events < limit_;
    }

    Statistics statistics;

private:
    Filter filter_;
    const std::uint64_t limit_;
};

Status summary(const Options& options) {
    if (!options.inputs.spares(options.output))
        return kUsage;
    Output output;
    if (!output.open(options.output))
        return kFailed;
    Counter counter(options.filter, output);
    const std::uint64_t faults = readSelected(options.inputs, options.filter, counter);
    rowOf(kSummaryFormats, options.format)
        .write(counter.statistics, faults, {output.coloured(), options.filter.times},
               output.text());
    return counter.finish();
}

} // namespace

Runner addSummary(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->filter.addOptions(app, TimeUse::Show);
    app.add_option("--format", options->format, "Output format. " + descriptionsOf(kSummaryFormats))
        ->check(CLI::IsMember(namesOf(kSummaryFormats)))
        ->capture_default_str();
    addOutput(app, options->output);
    return [options] { return summary(*options); };
}

} // namespace Pegasus::tool
