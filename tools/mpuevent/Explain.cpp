// mpuevent explain: which bytes of a record became what.
#include "formats/Explanation.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/EventSink.h"

namespace Pegasus::tool {

namespace {

class Explainer : public EventSink {
public:
    Explainer(const GatherOptions& options, Output& output)
        : EventSink(options.filter, output, {.readings = true}),
          printer_(rowOf(kExplanationFormats, options.format).make(output.coloured())) {
        printer_->begin(output.text());
    }
    Status finish() {
        printer_->end(output_.text());
        return SerialSink::finish();
    }

private:
    void add(const DecodedEvent& event) override {
        printer_->print(event, explain(event, decoder().readings(), decoder().isPlain()),
                        output_.text());
    }

    const std::unique_ptr<ExplanationPrinter> printer_;
};

Status explainEvents(const GatherOptions& options) {
    Output output;
    if (const Status status = options.inputs.openOutput(options.output, output); status != kFine)
        return status;
    Explainer explainer(options, output);
    readSelected(options.inputs, options.filter, explainer);
    return explainer.finish();
}

} // namespace

Runner addExplain(CLI::App& app) {
    const auto options = std::make_shared<GatherOptions>();
    addGatherOptions(app, *options, kExplanationFormats);
    return [options] { return explainEvents(*options); };
}

} // namespace Pegasus::tool
