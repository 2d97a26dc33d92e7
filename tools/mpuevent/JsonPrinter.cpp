// One event a line, as a JSON object.
#include "tools/mpuevent/Printer.h"
#include "tools/mpuevent/Utf8.h"

#include <utility>

// Its empty stack adds to a null pointer before it looks for room: harmless, but sanitizers tell.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/writer.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

namespace Pegasus::tool {

namespace {

// The output as the JSON writer wants it.
struct JsonStream {
    using Ch = char;
    void Put(char c) {
        char* to = out->reserve(1);
        *to = c;
        out->commit(to + 1);
    }
    void Flush() {}

    mpu::TextWriter* out = nullptr;
};

using JsonWriter = rapidjson::Writer<JsonStream>;

} // namespace

} // namespace Pegasus::tool

// Where the writer lets a stream copy what needs no escaping. (Its own fast way, RAPIDJSON_SSE2, is
// of no use: in version 1.1.0 that leaves U+001A to U+001F as they are.)
template <>
bool Pegasus::tool::JsonWriter::ScanWriteUnescapedString(
    rapidjson::GenericStringStream<rapidjson::UTF8<>>& in, std::size_t length) {
    const std::string_view rest(in.src_, length - in.Tell());
    const std::size_t plain = Pegasus::tool::plainRun(rest);
    os_->out->put(rest.substr(0, plain));
    in.src_ += plain;
    return plain < rest.size();
}

namespace Pegasus::tool {

namespace {

class JsonPrinter : public Printer {
public:
    void print(Avrel_Event& event, mpu::TextWriter& out) override {
        stream_.out = &out;
        writer_.Reset(stream_);
        writer_.StartObject();
        text("enclosureSerialNumber", event.getEnclosureSerialNumber());
        text("controllerSerialNumber", event.getControllerSerialNumber());
        number("controllerSlotID", event.getControllerSlotID());
        number("eventLogInstanceNumber", event.getEventLogInstanceNumber());
        number("sequenceID", event.getSequenceID());
        number("timestamp", event.getTimestamp());
        text("source", event.getSource());
        text("category", event.getCategory());
        number("eventType", std::as_const(event).getEventType());
        text("eventTypeText", event.getEventType());
        text("eventID", event.getEventID());
        text("summary", event.getSummary());
        text("body", event.getBody());
        writer_.EndObject();
        out.put("\n");
    }

private:
    void key(std::string_view name) {
        writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    }
    void number(std::string_view name, unsigned int value) {
        key(name);
        writer_.Uint(value);
    }
    void text(std::string_view name, const String& value) {
        key(name);
        utf8_.clear();
        putUtf8(utf8_, value);
        writer_.String(utf8_.view().data(), static_cast<rapidjson::SizeType>(utf8_.view().size()));
    }

    JsonStream stream_;
    JsonWriter writer_;
    mpu::BodyWriter utf8_;
};

} // namespace

std::unique_ptr<Printer> makeJsonPrinter() {
    return std::make_unique<JsonPrinter>();
}

} // namespace Pegasus::tool
