// What the commands that gather events have in common.
#pragma once

#include "tools/mpuevent/Selector.h"

namespace Pegasus::tool {

struct GatherOptions {
    Inputs inputs;
    FilterOptions filter;
    std::string format; // where there are several
    std::string output = "-";
};

// Decodes what is wanted, up to the limit.
class EventSink : public SerialSink {
public:
    EventSink(const FilterOptions& options, Output& output, const DecodeOptions& decoding = {})
        : SerialSink(output), filter_(options.ofSink(), decoding),
          left_(options.ofSink().limit.value_or(UINT64_MAX)) {}

    bool take(const Message& message) final {
        if (const DecodedEvent* event = filter_.decode(message)) {
            add(*event);
            --left_;
        }
        return output_.proceed() && left_ != 0;
    }

protected:
    virtual void add(const DecodedEvent& event) = 0;
    // What decoded it.
    const EventDecoder& decoder() const { return filter_.decoder(); }

private:
    Filter filter_;
    std::uint64_t left_; // of the events to take
};

// `formats`: rows that have names and descriptions, the first one the default.
template <class Formats>
void addGatherOptions(CLI::App& app, GatherOptions& options, const Formats& formats,
                      TimeUse use = TimeUse::Filter) {
    options.format = formats[0].name;
    options.inputs.addOptions(app);
    options.filter.addOptions(app, use);
    app.add_option("--format", options.format, "Output format. " + descriptionsOf(formats))
        ->check(CLI::IsMember(namesOf(formats)))
        ->capture_default_str();
    addOutput(app, options.output);
}

} // namespace Pegasus::tool
