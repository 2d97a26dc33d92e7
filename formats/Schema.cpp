#include "formats/Schema.h"

#include "event/HeaderNames.h"
#include "event/MPUEvent.h"
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Utf8.h"
#include "tools/catalogue/Sample.h"

#include <algorithm>
#include <memory>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace Pegasus::formats {

namespace {

constexpr int kRounds = 4; // of sample records, which are different each time

// What the events of a module show, in the order of first use.
struct Shown {
    std::vector<std::string> titles;
    std::vector<std::string> elements;
};

void add(std::vector<std::string>& names, std::string_view name) {
    if (std::find(names.begin(), names.end(), name) == names.end())
        names.emplace_back(name);
}

Shown shownBy(const mpu::Module& module) {
    Shown shown;
    BodyParser parser;
    EventDecoder decoder;
    mpu::SampleWriter samples(1);
    for (int round = 0; round < kRounds; ++round)
        for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
            const std::string record = samples.record(module, kind);
            const DecodedEvent& event = decoder.decode(
                {reinterpret_cast<const std::uint8_t*>(record.data()), record.size()});
            add(shown.titles, event.eventID);
            for (const BodyItem& item : parser.parse(event.body))
                if (item.type == BodyItem::Element || item.type == BodyItem::Group)
                    add(shown.elements, item.name);
        }
    return shown;
}

class Schema {
public:
    Schema() {
        json_.SetIndent(' ', 2);
        json_.SetFormatOptions(rapidjson::kFormatSingleLineArray);
    }

    std::string make(std::span<const mpu::Module> modules) {
        json_.StartObject();
        pair("$schema", "http://json-schema.org/draft-07/schema#");
        pair("title", "An event as mpuevent writes it with --format json, version " +
                          std::to_string(kFormatVersion));
        pair("type", "object");
        key("required");
        json_.StartArray();
        for (const Column& column : kColumns)
            if (column.extra == Extra::None)
                text(column.name);
        json_.EndArray();
        key("properties");
        json_.StartObject();
        for (const Column& column : kColumns)
            property(column);
        key("raw");
        json_.StartObject();
        pair("description", "The payload in hexadecimal, with --raw");
        pair("type", "string");
        json_.EndObject();
        key("fields");
        reference("fields");
        key("formatVersion");
        json_.StartObject();
        pair("description", "With --fields");
        key("const");
        json_.Uint(kFormatVersion);
        json_.EndObject();
        json_.EndObject();

        key("allOf");
        json_.StartArray();
        for (const mpu::Module& module : modules)
            condition(module);
        json_.EndArray();
        key("definitions");
        json_.StartObject();
        fields();
        for (const mpu::Module& module : modules)
            definition(module);
        json_.EndObject();
        json_.EndObject();
        return std::string(buffer_.GetString(), buffer_.GetSize()) + "\n";
    }

private:
    static std::string nameOr(std::string_view name, unsigned code) {
        return name.empty() ? std::to_string(code) : std::string(name);
    }
    static std::string sourceOf(unsigned code) {
        return nameOr(mpu::sourceName(static_cast<std::uint8_t>(code)), code);
    }

    void text(std::string_view value) {
        json_.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    }
    void key(std::string_view name) {
        json_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    }
    void pair(std::string_view name, std::string_view value) {
        key(name);
        text(value);
    }
    void texts(std::string_view name, const std::vector<std::string>& values) {
        key(name);
        json_.StartArray();
        for (const std::string& value : values)
            text(value);
        json_.EndArray();
    }
    // A schema that is another one.
    void reference(std::string_view name) {
        json_.StartObject();
        pair("$ref", std::string("#/definitions/").append(name));
        json_.EndObject();
    }

    void property(const Column& column) {
        const std::string_view name = column.name;
        key(name);
        json_.StartObject();
        pair("description", column.meaning);
        pair("type", column.text ? "string" : "integer");
        if (name == "source") {
            codes([](unsigned code) { return sourceOf(code); });
        } else if (name == "category") {
            codes([](unsigned code) {
                return nameOr(mpu::categoryName(static_cast<std::uint8_t>(code)), code);
            });
        } else if (name == "eventType") {
            key("enum");
            json_.StartArray();
            for (const auto& [code, meaning] : eventTypes())
                json_.Uint(code);
            json_.EndArray();
        } else if (name == "eventTypeText") {
            std::vector<std::string> names;
            for (const auto& [code, meaning] : eventTypes())
                names.push_back(meaning);
            texts("enum", names);
        } else if (name == "layout") {
            texts("enum", layouts());
        } else if (name == "time") {
            pair("format", "date-time");
        } else if (!column.text) {
            key("minimum");
            json_.Uint(0);
            if (column.number) {
                key("maximum");
                json_.Uint(UINT32_MAX);
            }
        }
        json_.EndObject();
    }

    static std::vector<std::string> layouts() {
        std::vector<std::string> names;
        for (const auto layout :
             {Provenance::Documented, Provenance::Inferred, Provenance::Assumed})
            names.emplace_back(nameOf(layout));
        return names;
    }

    // The names of a header byte's codes; what has none is written as its number.
    template <class NameOf>
    void codes(NameOf nameOf) {
        std::vector<std::string> names;
        for (unsigned code = 0; code < 256; ++code)
            if (const std::string name = nameOf(code); name != std::to_string(code))
                add(names, name);
        key("anyOf");
        json_.StartArray();
        json_.StartObject();
        texts("enum", names);
        json_.EndObject();
        json_.StartObject();
        pair("pattern", "^[0-9]{1,3}$");
        json_.EndObject();
        json_.EndArray();
    }

    static std::vector<std::pair<unsigned, std::string>> eventTypes() {
        std::vector<std::pair<unsigned, std::string>> types;
        types.emplace_back(0, "Unknown");
        for (unsigned code = 1; code < 256; ++code)
            if (const std::string_view name = mpu::eventTypeName(static_cast<std::uint8_t>(code));
                !name.empty())
                types.emplace_back(code, name);
        return types;
    }

    void condition(const mpu::Module& module) {
        json_.StartObject();
        key("if");
        json_.StartObject();
        key("properties");
        json_.StartObject();
        key("source");
        json_.StartObject();
        pair("const", sourceOf(module.source));
        json_.EndObject();
        json_.EndObject();
        json_.EndObject();
        key("then");
        reference(module.decoder);
        json_.EndObject();
    }

    void fields() {
        key("fields");
        json_.StartObject();
        pair("description", "The body's elements in order, with --fields; names repeat, and text "
                            "outside elements has an empty one");
        pair("type", "array");
        key("items");
        json_.StartObject();
        pair("type", "object");
        key("properties");
        json_.StartObject();
        for (const char* const name : {"name", "value"}) {
            key(name);
            json_.StartObject();
            pair("type", "string");
            json_.EndObject();
        }
        key("layout");
        json_.StartObject();
        pair("description", "Of an element whose place is not documented");
        texts("enum", layouts());
        json_.EndObject();
        key("missingBytes");
        json_.StartObject();
        pair("description", "Of an element that the record does not hold wholly");
        pair("type", "integer");
        json_.EndObject();
        key("fields");
        reference("fields");
        json_.EndObject();
        key("oneOf");
        json_.StartArray();
        for (const char* const content : {"value", "fields"}) {
            json_.StartObject();
            texts("required", {"name", content});
            json_.EndObject();
        }
        json_.EndArray();
        json_.EndObject();
        json_.EndObject();
    }

    void definition(const mpu::Module& module) {
        const Shown shown = shownBy(module);
        key(module.decoder);
        json_.StartObject();
        pair("description", "Titles and names of elements as sample records show them");
        key("properties");
        json_.StartObject();
        key("eventID");
        json_.StartObject();
        texts("examples", shown.titles);
        json_.EndObject();
        key("fields");
        json_.StartObject();
        key("items");
        json_.StartObject();
        key("properties");
        json_.StartObject();
        key("name");
        json_.StartObject();
        texts("examples", shown.elements);
        json_.EndObject();
        json_.EndObject();
        json_.EndObject();
        json_.EndObject();
        json_.EndObject();
        json_.EndObject();
    }

    rapidjson::StringBuffer buffer_;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> json_{buffer_};
};

} // namespace

std::string jsonSchema(std::span<const mpu::Module> modules) {
    return Schema().make(modules);
}

} // namespace Pegasus::formats
