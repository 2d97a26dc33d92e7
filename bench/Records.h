// What the benchmarks decode, and the two things that decoding is measured against.
#pragma once

#include "event/Avrel_Event.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Pegasus::bench {

// A kind of record, or a stream of several.
struct Stream {
    std::string name;
    std::vector<std::string> messages; // header and record each
};

// One stream a kind of record, one a decoder, one a family, and all kinds mixed.
std::vector<Stream> kinds();
std::vector<Stream> decoders();
std::vector<Stream> families();
Stream mixed();

// What callers do: message from a stream, event from the message, both destroyed. Returns the
// characters of the event's texts.
std::size_t decodeOne(const std::string& message);

// The same event by a decoder as it is written without much thought: every field through snprintf
// into a std::string, every tag repaired and the finished body made safe character by character.
// What a field is was looked up beforehand, so that only the writing is measured.
class PlainDecoder {
public:
    explicit PlainDecoder(const std::string& message);
    std::size_t decodeOne() const;

private:
    struct Field {
        enum Kind { Open, Close, Signed, Unsigned, Hex, Text, Bytes } kind;
        std::string tag;
        std::uint64_t number = 0;
        int digits = 0;
        bool upper = false;
        std::string text;   // of Text and Bytes
        std::string behind; // between this element and the next
    };
    std::string body() const;
    void parse(const std::string& body);

    std::string message_;
    std::string texts_[6];
    std::string raw_; // a body that has no elements
    std::vector<Field> fields_;
    std::string expected_;
    bool safe_ = false; // whether the finished body is made safe
};

// The least that an event costs: its object and its finished 16-bit texts, allocated and copied.
class Floor {
public:
    explicit Floor(const std::string& message);
    std::size_t copyOne() const;

private:
    std::vector<String> texts_;
};

} // namespace Pegasus::bench
