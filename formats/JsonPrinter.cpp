// One event a line, as a JSON object; and the same as CSV.
#include "formats/Basis.h"
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Escape.h"
#include "formats/NamedValues.h"
#include "formats/Printer.h"
#include "formats/Utf8.h"

#include <deque>

namespace Pegasus::formats {

namespace {

// What an element rests on is told of those that are not documented or not complete.
void putRest(mpu::TextWriter& out, const FieldBasis& basis) {
    if (basis.layout != Provenance::Documented)
        putJson(out.literal(",\"layout\":"), nameOf(basis.layout));
    if (basis.missingBytes != 0)
        out.literal(",\"missingBytes\":").decimal(basis.missingBytes);
}

// [{"name": .., "value": ..}, {"name": .., "fields": [..]}]; the name of text outside elements is
// empty.
void putFields(mpu::TextWriter& out, const std::vector<BodyItem>& items,
               std::span<const FieldBasis> basis) {
    const char* before = "[";
    for (std::size_t i = 0; i < items.size(); ++i) {
        const BodyItem& item = items[i];
        if (item.type == BodyItem::End) {
            // An empty group has no first field that would begin its list.
            out.literal(items[i - 1].type == BodyItem::Group ? "[]}" : "]}");
            before = ",";
            continue;
        }
        putJson(out.literal(before).literal("{\"name\":"), item.name);
        if (item.type == BodyItem::Group) {
            out.literal(",\"fields\":");
            before = "[";
            continue;
        }
        putJson(out.literal(",\"value\":"), item.text);
        if (i < basis.size())
            putRest(out, basis[i]);
        out.literal("}");
        before = ",";
    }
    out.literal(items.empty() ? "[]" : "]");
}

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
                putJson(out, event.*columns_[i]->text);
            else
                columns_[i]->putNumber(event, out);
        }
        if (raw_) {
            putPayload(out.literal(",\"raw\":\""), event);
            out.literal("\"");
        }
        if (fields_) {
            putFields(out.literal(",\"fields\":"), parser_.parse(event.body), event.fields);
            out.literal(",\"formatVersion\":").decimal(kFormatVersion);
        }
        out.literal("}\n");
    }

private:
    const bool fields_;
    const bool raw_;
    std::vector<const Column*> columns_;
    std::vector<std::string> keys_; // of those
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
            putFields(list_, parser_.parse(event.body), event.fields);
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
    // Readers of CSV stop at a NUL.
    static void cell(mpu::TextWriter& out, std::string_view text) {
        constexpr std::string_view kNoNul = "\xEF\xBF\xBD";
        if (plainRun<'"', ','>(text) == text.size() ||
            text.find_first_of(std::string_view("\",\r\n\0", 5)) == text.npos) {
            out.literal(text);
            return;
        }
        const auto put = [&](char* to, std::string_view rest) -> std::pair<char*, std::size_t> {
            if (rest[0] == '\0')
                return {mpu::putText(to, kNoNul), 1};
            *to++ = rest[0];
            if (rest[0] == '"')
                *to++ = '"';
            return {to, 1};
        };
        out.literal("\"");
        putEscaped<'"'>(out, text, kNoNul.size(), put);
        out.literal("\"");
    }

    const PrintOptions options_;
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
