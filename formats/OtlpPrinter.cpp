// OpenTelemetry logs in the JSON encoding of OTLP: a whole export request on each line, as the
// collector's file exporter writes and its file receiver reads them. Integers of 64 bits are texts.
#include "formats/Basis.h"
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Printer.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

namespace Pegasus::formats {

namespace {

constexpr std::string_view kBegin =
    R"({"resourceLogs":[{"resource":{"attributes":[)"
    R"({"key":"service.name","value":{"stringValue":"mpuevent"}}]},)"
    R"("scopeLogs":[{"scope":{"name":"mpuevent"},"logRecords":[{)";
constexpr std::string_view kEnd = "]}]}]}]}\n";

constexpr std::uint64_t kNanoseconds = 1000000000; // in a second

mpu::TextWriter& putText(mpu::TextWriter& out, std::string_view key, std::string_view value) {
    out.literal(R"({"key":")").literal(key).literal(R"(","value":{"stringValue":)");
    return putJson(out, value).literal("}}");
}

class OtlpPrinter : public Printer {
public:
    explicit OtlpPrinter(const PrintOptions& options) : options_(options) {
        for (const Column& column : kColumns)
            if (isShown(column, options)) {
                columns_.push_back(&column);
                keys_.push_back("mpuevent." + std::string(column.name));
            }
    }

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        const unsigned severity = severityOf(event.eventType);
        out.literal(kBegin);
        putTime(out, event);
        out.literal("\"severityNumber\":").decimal(kOtlpSeverities[severity]);
        putJson(out.literal(",\"severityText\":"), event.eventTypeText);
        headline_.clear();
        putHeadline(headline_, event);
        putJson(out.literal(R"(,"body":{"stringValue":)"), headline_.view());
        out.literal(R"(},"attributes":[)");
        const char* before = "";
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const Column& column = *columns_[i];
            if (column.text && (event.*column.text).empty())
                continue;
            out.literal(before);
            before = ",";
            if (column.text) {
                putText(out, keys_[i], event.*column.text);
                continue;
            }
            out.literal(R"({"key":")").literal(keys_[i]).literal(R"(","value":{"intValue":")");
            column.putNumber(event, out);
            out.literal("\"}}");
        }
        if (options_.raw) {
            putPayload(out.literal(R"(,{"key":"mpuevent.raw","value":{"stringValue":")"), event);
            out.literal("\"}}");
        }
        if (options_.fields)
            putFields(out, parser_.parse(event.body), event.fields);
        out.literal(kEnd);
    }

private:
    // Nothing where the time is not known, or is none that the format can tell: before 1970 or
    // after 2554.
    void putTime(mpu::TextWriter& out, const DecodedEvent& event) const {
        if (!options_.epoch)
            return;
        const std::int64_t time = *options_.epoch + event.timestamp;
        if (time >= 0 && static_cast<std::uint64_t>(time) <= UINT64_MAX / kNanoseconds) {
            out.literal("\"timeUnixNano\":\"");
            out.decimal64(static_cast<std::uint64_t>(time) * kNanoseconds).literal("\",");
        }
    }

    // As JSON has them: a list, since names repeat, of maps with name and value or more fields.
    static void putFields(mpu::TextWriter& out, const std::vector<BodyItem>& items,
                          std::span<const FieldBasis> basis) {
        out.literal(R"(,{"key":"mpuevent.fields","value":{"arrayValue":{"values":[)");
        bool isFirst = true;
        for (std::size_t i = 0; i < items.size(); ++i) {
            const BodyItem& item = items[i];
            if (item.type == BodyItem::End) {
                out.literal("]}}}]}}");
                isFirst = false;
                continue;
            }
            out.literal(isFirst ? "" : ",").literal(R"({"kvlistValue":{"values":[)");
            putText(out, "name", item.name).literal(",");
            isFirst = item.type == BodyItem::Group;
            if (isFirst) {
                out.literal(R"({"key":"fields","value":{"arrayValue":{"values":[)");
                continue;
            }
            putText(out, "value", item.text);
            if (i < basis.size() && basis[i].layout != Provenance::Documented)
                putText(out.literal(","), "layout", nameOf(basis[i].layout));
            if (i < basis.size() && basis[i].missingBytes != 0)
                out.literal(R"(,{"key":"missingBytes","value":{"intValue":")")
                    .decimal(basis[i].missingBytes)
                    .literal("\"}}");
            out.literal("]}}");
        }
        out.literal("]}}}");
    }

    const PrintOptions options_;
    std::vector<const Column*> columns_;
    std::vector<std::string> keys_; // of those
    mpu::LineWriter headline_;
    BodyParser parser_;
};

} // namespace

std::unique_ptr<Printer> makeOtlpPrinter(const PrintOptions& options) {
    return std::make_unique<OtlpPrinter>(options);
}

} // namespace Pegasus::formats
