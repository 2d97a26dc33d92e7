// One event as a message of RFC 5424.
#include "formats/Logs.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>

namespace Pegasus::formats {

namespace {

constexpr unsigned kFacility = 16; // local0
// 32473 is the enterprise number for whom has none (RFC 5612).
constexpr std::string_view kElement = "[mpuevent@32473";
constexpr std::size_t kMaxMessage = 8000; // rsyslog cuts at 8 KB if not told otherwise
constexpr std::size_t kMaxValue = 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; // before a message that is not ASCII

// A field of the header: printable ASCII without blanks, "-" for none.
std::string headerField(std::string_view text, std::size_t most) {
    std::string field(text.substr(0, most));
    std::replace_if(
        field.begin(), field.end(), [](char c) { return c <= ' ' || c > '~'; }, '_');
    return field.empty() ? "-" : field;
}

class SyslogPrinter : public Printer {
public:
    SyslogPrinter(const PrintOptions& options, const SyslogSender& sender)
        : options_(options), sender_(headerField(sender.host, 255) + " mpuevent " +
                                     headerField(sender.process, 128) + " ") {}

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        const std::size_t begin = out.view().size();
        out.literal("<").decimal(kFacility * 8 + kSyslogSeverities[severityOf(event.eventType)]);
        out.literal(">1 ").literal(event.time.empty() ? "-" : event.time).literal(" ");
        out.literal(sender_).literal(headerField(event.source, 32)).literal(" ").literal(kElement);
        for (const Column& column : kColumns) {
            if (!isShown(column, options_) || column.text == &DecodedEvent::body)
                continue;
            if (column.text) {
                putParameter(out, column.name, shortened(event.*column.text, kMaxValue));
                continue;
            }
            column.putNumber(event, out.literal(" ").literal(column.name).literal("=\""));
            out.literal("\"");
        }
        message_.clear();
        putHeadline(message_, event);
        const std::string_view message = shortened(message_.view(), kMaxValue);
        body_.clear();
        putParameter(body_, "body", event.body);
        if (out.view().size() - begin + body_.view().size() + message.size() <= kMaxMessage)
            out.literal(body_.view());
        else
            out.literal(" bodyBytes=\"").decimal64(event.body.size()).literal("\"");
        const bool isAscii = std::all_of(message.begin(), message.end(),
                                         [](char c) { return static_cast<signed char>(c) >= 0; });
        out.literal("] ").literal(isAscii ? "" : kByteOrderMark).literal(message);
    }

private:
    // Nothing for an empty value. Control characters become printable; what could end a value gets
    // a backslash.
    void putParameter(mpu::TextWriter& out, std::string_view name, std::string_view value) {
        if (value.empty())
            return;
        printable_.clear();
        putPrintable(printable_, value);
        out.literal(" ").literal(name).literal("=\"");
        std::string_view rest = printable_.view();
        while (true) {
            const std::size_t run = rest.find_first_of("\"\\]");
            out.literal(rest.substr(0, run));
            if (run == rest.npos)
                break;
            out.literal("\\").literal(rest.substr(run, 1));
            rest.remove_prefix(run + 1);
        }
        out.literal("\"");
    }

    const PrintOptions options_;
    const std::string sender_;
    mpu::LineWriter message_;
    mpu::BodyWriter printable_;
    mpu::BodyWriter body_;
};

} // namespace

std::unique_ptr<Printer> makeSyslogPrinter(const PrintOptions& options,
                                           const SyslogSender& sender) {
    return std::make_unique<SyslogPrinter>(options, sender);
}

} // namespace Pegasus::formats
