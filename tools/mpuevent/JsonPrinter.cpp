// One event a line, as a JSON object.
#include "tools/mpuevent/Printer.h"
#include "tools/mpuevent/Utf8.h"

#include <utility>

#ifdef __SSE2__
#define RAPIDJSON_SSE2 // the writer looks for characters to escape in blocks of 16
#endif
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Pegasus::tool {

namespace {

class JsonPrinter : public Printer {
public:
    void print(Avrel_Event& event, mpu::TextWriter& out) override {
        buffer_.Clear();
        writer_.Reset(buffer_);
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
        out.put({buffer_.GetString(), buffer_.GetSize()}).put("\n");
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

    // The writer's fast search is only there for this buffer.
    rapidjson::StringBuffer buffer_;
    rapidjson::Writer<rapidjson::StringBuffer> writer_;
    mpu::BodyWriter utf8_;
};

} // namespace

std::unique_ptr<Printer> makeJsonPrinter() {
    return std::make_unique<JsonPrinter>();
}

} // namespace Pegasus::tool
