// mpuevent report: a self-contained HTML page.
#include "formats/ReportPage.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Selector.h"

namespace Pegasus::tool {

namespace {

struct Options {
    Inputs inputs;
    FilterOptions filter;
    std::string output = "-";
};

class PageWriter : public SerialSink {
public:
    PageWriter(const FilterOptions& options, Output& output)
        : SerialSink(output), filter_(options.ofSink()),
          limit_(options.ofSink().limit.value_or(UINT64_MAX)) {
        page_.begin(output.text());
    }

    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message))
            page_.add(*event, output_.text());
        return output_.proceed() && page_.events() < limit_;
    }

    Status finish(std::uint64_t faults) {
        page_.end(faults, output_.text());
        return SerialSink::finish();
    }

private:
    Filter filter_;
    const std::uint64_t limit_;
    ReportPage page_;
};

Status report(const Options& options) {
    if (!options.inputs.spares(options.output))
        return kUsage;
    Output output;
    if (!output.open(options.output))
        return kFailed;
    PageWriter writer(options.filter, output);
    const std::uint64_t faults = readSelected(options.inputs, options.filter, writer);
    return writer.finish(faults);
}

} // namespace

Runner addReport(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->filter.addOptions(app, TimeUse::Show);
    addOutput(app, options->output);
    return [options] { return report(*options); };
}

} // namespace Pegasus::tool
