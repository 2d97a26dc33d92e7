// What happened and when, on one line.
#include "formats/Basis.h"
#include "formats/NamedValues.h"
#include "formats/Printer.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <deque>

namespace Pegasus::formats {

namespace {

constexpr std::string_view kTimeColumn = "timestamp";
constexpr std::string_view kSeverityColumn = "eventTypeText";

std::size_t widthOf(std::string_view name) {
    return name == kSeverityColumn ? 17 : name == "category" ? 13 : name == "source" ? 11 : 10;
}

// Columns, and title and summary where none are chosen.
class BriefPrinter : public LinesPrinter {
public:
    explicit BriefPrinter(const PrintOptions& options)
        : colour_(options.colour), raw_(options.raw), origin_(options.origin),
          titled_(options.columns.empty()) {
        for (const std::string& name : options.columns)
            columns_.emplace_back(name);
        if (titled_)
            for (const char* name : {kTimeColumn.data(), "sequenceID", "controllerSerialNumber",
                                     "eventTypeText", "source"})
                columns_.emplace_back(name);
    }

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        if (origin_) {
            putPrintable(out, event.file);
            out.literal(":").decimal64(event.offset).literal("  ");
        }
        for (NamedValues& column : columns_) {
            const bool coloured = colour_ && column.name() == kSeverityColumn;
            const bool timed = titled_ && column.name() == kTimeColumn && !event.shownTime.empty();
            const std::string_view value = timed ? event.shownTime : trimmed(column.joined(event));
            const std::string_view shown = value.empty() ? "-" : value;
            out.literal(coloured ? kColours[severityOf(event.eventType)] : "");
            putPrintable(out, shown);
            if (titled_ || &column != &columns_.back()) {
                for (std::size_t i = shown.size(); i < widthOf(column.name()); ++i)
                    out.literal(" ");
                out.literal("  ");
            }
            out.literal(coloured ? kPlain : "");
        }
        if (titled_) {
            putHeadline(out, event);
            putDoubts(out, event, "  ", "");
        }
        if (raw_)
            putPayload(out.literal("  "), event);
        out.literal("\n");
    }

private:
    const bool colour_;
    const bool raw_;
    const bool origin_;
    const bool titled_;
    std::deque<NamedValues> columns_;
};

} // namespace

void putHeadline(mpu::TextWriter& out, const DecodedEvent& event) {
    putPrintable(out, event.eventID);
    if (!event.summary.empty())
        putPrintable(out.literal(": "), event.summary);
}

std::unique_ptr<Printer> makeBriefPrinter(const PrintOptions& options) {
    return std::make_unique<BriefPrinter>(options);
}

} // namespace Pegasus::formats
