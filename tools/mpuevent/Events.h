// From messages to written events: what `decode` and `follow` share.
#pragma once

#include "formats/Printer.h"
#include "tools/mpuevent/EventSink.h"

namespace Pegasus::tool {

struct EventOptions {
    FilterOptions filter;
    std::string format = "text";
    bool fields = false;
    bool raw = false;
    bool origin = false;
    bool knownOnly = false;
    std::vector<std::string> columns;
    bool trace = false;

    void addOptions(CLI::App& app, bool endless = false);
    // Reports options that don't go together, and starts the tracing.
    bool prepare() const;
    PrintOptions printing(const Output& output) const;
    std::unique_ptr<Printer> printer(const Output& output) const {
        return rowOf(kFormats, format).make(printing(output));
    }
    DecodeOptions decoding() const { return {fields, false, knownOnly}; }
};

// Decodes and writes one message after the other.
class EventWriter : public EventSink {
public:
    // The texts before the first event and after the last one are left to the parts with these.
    EventWriter(const EventOptions& options, Output& output, Part part = {})
        : EventWriter(options, output, options.decoding(), part) {}
    void onGap() override { printer_->gap(output_.text()); }
    Status finish() {
        if (part_.isLast())
            printer_->end(output_.text());
        return SerialSink::finish();
    }

protected:
    EventWriter(const EventOptions& options, Output& output, const DecodeOptions& decoding,
                Part part = {})
        : EventSink(options.filter, output, decoding), printer_(options.printer(output)),
          part_(part) {
        if (part_.isFirst())
            printer_->begin(output.text());
    }
    void add(const DecodedEvent& event) override { printer_->print(event, output_.text()); }

private:
    const std::unique_ptr<Printer> printer_;
    const Part part_;
};

} // namespace Pegasus::tool
