// What an input holds, by its first bytes.
#pragma once

#include "capture/Capture.h"
#include "capture/Compressed.h"
#include "capture/HexText.h"

#include <memory>
#include <optional>

namespace Pegasus::capture {

// What the caller knows of an input. What is left open is recognised.
struct InputHints {
    std::optional<Framing> framing;
    std::optional<bool> text; // hex or base64
};

// An input with all that is around its messages taken off: compression, then hex or base64 text, in
// whatever order; three layers at most, lest a few bytes unpack to more than can ever be read.
//
// Looking at the first bytes waits for no more than a decision takes: the shortest message, or as
// much text as stands for one. Only what is none of all that is looked at for 64 KiB.
class RecognisedInput {
public:
    // The input stays the caller's.
    RecognisedInput(ByteSource& input, InputHints hints, const FaultHandler& report);

    // Why it can't be read; empty when it can.
    const std::string& refusal() const { return refusal_; }
    // Whether the messages are in the input as they are.
    bool isPlain() const { return layers_.size() == 1; }
    // What was recognised, from the outside in; empty for plain messages.
    const std::string& description() const { return description_; }
    Framing framing() const { return framing_; }
    int failure() const { return bytes_->failure(); }
    ByteSource& bytes() const { return *bytes_; }

private:
    void describe(std::string_view what);
    void refuse(std::string_view why);

    std::vector<std::unique_ptr<ByteSource>> layers_;
    ByteSource* bytes_;
    Framing framing_ = Framing::Message;
    std::string description_;
    std::string refusal_;
};

} // namespace Pegasus::capture
