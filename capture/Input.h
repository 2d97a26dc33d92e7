// One capture from its path to its messages.
#pragma once

#include "capture/Recognise.h"

namespace Pegasus::capture {

// What a caller may say that an input holds.
struct InputKind {
    const char* name;
    InputHints hints;
};
inline constexpr InputKind kInputKinds[] = {
    {"auto", {}},
    {"cmap", {Framing::Message, false}},
    {"record", {Framing::Record, false}},
    {"hex", {Framing::Message, true}},
    {"hex-record", {Framing::Record, true}},
};

// A file to read; "-" is standard input.
class InputFile {
public:
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    int descriptor() const { return descriptor_; }
    int error() const { return error_; } // the errno of opening it, or 0

private:
    int descriptor_;
    int error_;
};

// Bytes of a capture, as in Message::offset.
struct ByteRange {
    std::uint64_t begin = 0;
    std::uint64_t end = UINT64_MAX;

    bool has(std::uint64_t offset) const { return begin <= offset && offset < end; }
};

// Messages and damage that begin in a range of an input's bytes. What comes before the range is
// read as well: where messages begin may depend on all of it. So adjoining ranges have together
// exactly what the whole has.
class Input {
public:
    // The bytes stay the caller's. `onFault` is told what is wrong with compression and text, also
    // during construction; a range has those faults that are found while the reading is inside it.
    Input(ByteSource& bytes, InputHints hints, FaultHandler onFault, DamageHandler onDamage,
          ByteRange range = {});

    // What it is; there are no messages when that is a refusal.
    const RecognisedInput& recognised() const { return recognised_; }
    // As of a capture.
    bool next(Message& message);
    std::uint64_t position() const { return capture_ ? capture_->position() : 0; }

private:
    const ByteRange range_;
    const FaultHandler onFault_;
    std::optional<Capture> capture_;
    const RecognisedInput recognised_;
};

} // namespace Pegasus::capture
