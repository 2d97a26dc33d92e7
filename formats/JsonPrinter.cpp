// One event a line, as a JSON object; and the same as CSV.
#include "formats/Basis.h"
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/NamedValues.h"
#include "formats/Printer.h"
#include "formats/Utf8.h"

#include <deque>

// Its empty stack adds to a null pointer before it looks for room: harmless, but sanitizers tell.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/writer.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

namespace Pegasus::formats {

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

} // namespace Pegasus::formats

// Where the writer lets a stream copy what needs no escaping. (Its own fast way, RAPIDJSON_SSE2, is
// of no use: in version 1.1.0 that leaves U+001A to U+001F as they are.)
template <>
bool Pegasus::formats::JsonWriter::ScanWriteUnescapedString(
    rapidjson::GenericStringStream<rapidjson::UTF8<>>& in, std::size_t length) {
    const std::string_view rest(in.src_, length - in.Tell());
    const std::size_t plain = Pegasus::formats::plainRun(rest);
    os_->out->literal(rest.substr(0, plain));
    in.src_ += plain;
    return plain < rest.size();
}

namespace Pegasus::formats {

namespace {

class Json {
public:
    // On each new value.
    void start(mpu::TextWriter& out) {
        stream_.out = &out;
        writer_.Reset(stream_);
    }
    void text(std::string_view value) {
        writer_.String(value.empty() ? "" : value.data(),
                       static_cast<rapidjson::SizeType>(value.size()));
    }
    void key(std::string_view name) {
        writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    }

    // [{"name": .., "value": ..}, {"name": .., "fields": [..]}]; text outside elements has no name.
    // What an element rests on is told of those that are not documented or not complete.
    void fields(const std::vector<BodyItem>& items, std::span<const FieldBasis> basis) {
        writer_.StartArray();
        for (std::size_t i = 0; i < items.size(); ++i) {
            const BodyItem& item = items[i];
            if (item.type != BodyItem::End) {
                writer_.StartObject();
                key("name");
                text(item.name);
            }
            switch (item.type) {
            case BodyItem::Text:
            case BodyItem::Element:
                key("value");
                text(item.text);
                if (i < basis.size())
                    rest(basis[i]);
                writer_.EndObject();
                break;
            case BodyItem::Group:
                key("fields");
                writer_.StartArray();
                break;
            case BodyItem::End:
                writer_.EndArray();
                writer_.EndObject();
                break;
            }
        }
        writer_.EndArray();
    }

private:
    void rest(const FieldBasis& basis) {
        if (basis.layout != Provenance::Documented) {
            key("layout");
            text(nameOf(basis.layout));
        }
        if (basis.missingBytes != 0) {
            key("missingBytes");
            writer_.Uint(basis.missingBytes);
        }
    }

    JsonStream stream_;
    JsonWriter writer_;
};

class JsonPrinter : public Printer {
public:
    explicit JsonPrinter(const PrintOptions& options) : fields_(options.fields), raw_(options.raw) {
        for (const Column& column : kColumns)
            if (isShown(column, options)) {
                columns_.push_back(&column);
                keys_.push_back((keys_.empty() ? "{\"" : ",\"") + std::string(column.name) + "\":");
            }
    }

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            out.literal(keys_[i]);
            if (columns_[i]->text)
                text(out, event.*columns_[i]->text);
            else
                columns_[i]->putNumber(event, out);
        }
        if (raw_) {
            putPayload(out.literal(",\"raw\":\""), event);
            out.literal("\"");
        }
        if (fields_) {
            json_.start(out.literal(",\"fields\":"));
            json_.fields(parser_.parse(event.body), event.fields);
            out.literal(",\"formatVersion\":").decimal(kFormatVersion);
        }
        out.literal("}\n");
    }

private:
    // Most have nothing to escape.
    void text(mpu::TextWriter& out, std::string_view value) {
        if (plainRun(value) == value.size()) {
            out.literal("\"").literal(value).literal("\"");
        } else {
            json_.start(out);
            json_.text(value);
        }
    }

    const bool fields_;
    const bool raw_;
    std::vector<const Column*> columns_;
    std::vector<std::string> keys_; // of those
    Json json_;
    BodyParser parser_;
};

// RFC 4180, with the JSON keys for a header line; fields are the JSON list in one cell.
class CsvPrinter : public Printer {
public:
    explicit CsvPrinter(const PrintOptions& options) : options_(options) {
        for (const std::string& name : options.columns)
            chosen_.emplace_back(name);
    }

    void begin(mpu::TextWriter& out) override {
        for (const NamedValues& column : chosen_)
            cell(out.literal(&column == &chosen_.front() ? "" : ","), column.name());
        if (chosen_.empty())
            for (const Column& column : kColumns)
                if (isShown(column, options_))
                    out.literal(&column == kColumns ? "" : ",").literal(column.name);
        out.literal(options_.raw ? ",raw" : "").literal(options_.fields ? ",fields\r\n" : "\r\n");
    }

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        for (NamedValues& column : chosen_)
            cell(out.literal(&column == &chosen_.front() ? "" : ","), column.joined(event));
        if (chosen_.empty())
            all(event, out);
        if (options_.raw)
            putPayload(out.literal(","), event);
        if (options_.fields) {
            list_.clear();
            json_.start(list_);
            json_.fields(parser_.parse(event.body), event.fields);
            cell(out.literal(","), list_.view());
        }
        out.literal("\r\n");
    }

private:
    void all(const DecodedEvent& event, mpu::TextWriter& out) const {
        for (const Column& column : kColumns) {
            if (!isShown(column, options_))
                continue;
            out.literal(&column == kColumns ? "" : ",");
            if (column.text)
                cell(out, event.*column.text);
            else
                column.putNumber(event, out);
        }
    }
    static void cell(mpu::TextWriter& out, std::string_view text) {
        if (text.find_first_of(std::string_view("\",\r\n\0", 5)) == text.npos) {
            out.literal(text);
            return;
        }
        out.literal("\"");
        while (!text.empty()) {
            const std::size_t run = text.find_first_of(std::string_view("\"\0", 2));
            out.literal(text.substr(0, run));
            if (run == text.npos)
                break;
            // Readers of CSV stop at a NUL.
            out.literal(text[run] == '"' ? "\"\"" : "\xEF\xBF\xBD");
            text.remove_prefix(run + 1);
        }
        out.literal("\"");
    }

    const PrintOptions options_;
    Json json_;
    mpu::BodyWriter list_;
    BodyParser parser_;
    std::deque<NamedValues> chosen_; // columns, if any
};

} // namespace

std::unique_ptr<Printer> makeJsonPrinter(const PrintOptions& options) {
    return std::make_unique<JsonPrinter>(options);
}

std::unique_ptr<Printer> makeCsvPrinter(const PrintOptions& options) {
    return std::make_unique<CsvPrinter>(options);
}

} // namespace Pegasus::formats
