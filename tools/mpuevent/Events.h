// From messages to written events: what `decode` and `follow` share.
#pragma once

#include "formats/Printer.h"
#include "tools/mpuevent/Filter.h"
#include "tools/mpuevent/Inputs.h"

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
    std::unique_ptr<Printer> printer(const Output& output) const;
    DecodeOptions decoding() const { return {fields, false, knownOnly}; }
};

// Decodes and writes one message after the other.
class EventWriter : public SerialSink {
public:
    // The texts before the first event and after the last one are left to the parts with these.
    EventWriter(const EventOptions& options, Output& output, Part part = {})
        : SerialSink(output), filter_(options.filter.ofSink(), options.decoding()),
          left_(options.filter.ofSink().limit.value_or(UINT64_MAX)),
          printer_(options.printer(output)), part_(part) {
        if (part_.isFirst())
            printer_->begin(output.text());
    }
    bool take(const Message& message) override {
        if (const DecodedEvent* event = filter_.decode(message)) {
            printer_->print(*event, output_.text());
            --left_;
        }
        return output_.proceed() && left_ != 0;
    }
    void onGap() override { printer_->gap(output_.text()); }
    Status finish() {
        if (part_.isLast())
            printer_->end(output_.text());
        return SerialSink::finish();
    }

private:
    Filter filter_;
    std::uint64_t left_; // of the events to write
    const std::unique_ptr<Printer> printer_;
    const Part part_;
};

} // namespace Pegasus::tool
