// mpuevent explain: which bytes of a record became what.
#include "formats/Explanation.h"
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

class Explainer : public SerialSink {
public:
    Explainer(const Options& options, Output& output)
        : SerialSink(output), filter_(options.filter.ofSink(), {.readings = true}),
          left_(options.filter.ofSink().limit.value_or(UINT64_MAX)),
          printer_(rowOf(kExplanationFormats, options.format).make(output.coloured())) {
        printer_->begin(output.text());
    }
    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message)) {
            const EventDecoder& decoder = filter_.decoder();
            printer_->print(*event, explain(*event, decoder.readings(), decoder.isPlain()),
                            output_.text());
            --left_;
        }
        return output_.proceed() && left_ != 0;
    }
    Status finish() {
        printer_->end(output_.text());
        return SerialSink::finish();
    }

private:
    Filter filter_;
    std::uint64_t left_; // of the events to explain
    const std::unique_ptr<ExplanationPrinter> printer_;
};

Status explainEvents(const Options& options) {
    if (!options.inputs.spares(options.output))
        return kUsage;
    Output output;
    if (!output.open(options.output))
        return kFailed;
    Explainer explainer(options, output);
    readSelected(options.inputs, options.filter, explainer);
    return explainer.finish();
}

} // namespace

Runner addExplain(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    options->inputs.addOptions(app);
    options->filter.addOptions(app);
    app.add_option("--format", options->format,
                   "Output format. " + descriptionsOf(kExplanationFormats))
        ->check(CLI::IsMember(namesOf(kExplanationFormats)))
        ->capture_default_str();
    addOutput(app, options->output);
    return [options] { return explainEvents(*options); };
}

} // namespace Pegasus::tool
