// The entries of the decoders that derive from AvrelEvent.
#pragma once

#include "event/AvrelEvent.h"
#include "event/TableCompiler.h"

namespace Pegasus::mpu::datapath {

// Takes entries in one of two ways, so that a walk over the tables serves both: as the text of a
// body, or one by one through the virtual addEntry() of an event, where a subclass sees them.
class Entries {
public:
    // `body` keeps texts raw.
    explicit Entries(TextWriter& body) : out_(body), event_(nullptr) {}
    // `scratch` is empty and stays so.
    Entries(TextWriter& scratch, AvrelEvent& event) : out_(scratch), event_(&event) {}

    // One entry a row. The values are numbers; the style of the layout is Style::Joined.
    void structure(const Layout& layout, RecordView view);
    void text(const char* tag, std::string_view value);

    // Scratch that most structures fit.
    using Scratch = StackWriter<1024>;

private:
    TextWriter& out_;
    AvrelEvent* event_;
};

} // namespace Pegasus::mpu::datapath
