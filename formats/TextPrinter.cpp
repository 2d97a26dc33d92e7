// Events for people: an indented block, or one line.
#include "event/Ascii.h"
#include "formats/Basis.h"
#include "formats/Body.h"
#include "formats/Printer.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <array>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kDumpLine = 16; // bytes

// The value of a hexadecimal digit, 16 for any other character.
constexpr auto kDigitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(16);
    for (std::uint8_t i = 0; i < 16; ++i) {
        values[static_cast<unsigned char>("0123456789ABCDEF"[i])] = i;
        values[static_cast<unsigned char>("0123456789abcdef"[i])] = i;
    }
    return values;
}();

unsigned digitValue(char c) {
    return kDigitValues[static_cast<unsigned char>(c)];
}

bool isHexDigit(char c) {
    return digitValue(c) < 16;
}

// Digits only, more than one line of a dump.
bool isLongHex(std::string_view text) {
    return text.size() > 2 * kDumpLine && text.size() % 2 == 0 &&
           std::all_of(text.begin(), text.end(), [](char c) { return isHexDigit(c); });
}

// Where the next group of an offset-marked dump ("0x0010=..; 0x0020=..") begins, after the first.
std::size_t nextGroup(std::string_view text) {
    for (std::size_t at = text.find("0x", 1); at != std::string_view::npos;
         at = text.find("0x", at + 1)) {
        if (text[at - 1] != ';' && text[at - 1] != '?') // "?": a sanitized ";"
            continue;
        std::size_t end = at + 2;
        while (end < text.size() && isHexDigit(text[end]))
            ++end;
        if (end - at >= 6 && end < text.size() && (text[end] == '=' || text[end] == ':'))
            return at;
    }
    return text.size();
}

class TextPrinter : public LinesPrinter {
public:
    explicit TextPrinter(const PrintOptions& options)
        : colour_(options.colour), raw_(options.raw), origin_(options.origin) {}

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        out.literal("Event ").decimal(event.sequenceID).literal(": ");
        const unsigned severity = severityOf(event.eventType);
        out.literal(colour_ ? kColours[severity] : "");
        putPrintable(out, event.eventTypeText);
        out.literal(colour_ ? kPlain : "").literal(", ");
        putPrintable(out, event.source);
        out.literal(", ");
        putPrintable(out, event.category);
        out.literal("\n");
        line(out, "Title", event.eventID);
        line(out, "Summary", event.summary);
        line(out, "Enclosure", event.enclosureSerialNumber);
        line(out, "Controller", event.controllerSerialNumber);
        out.literal("  Slot: ").decimal(event.controllerSlotID);
        out.literal("\n  Log: ").decimal(event.eventLogInstanceNumber);
        out.literal("\n  Time: ");
        event.shownTime.empty() ? out.decimal(event.timestamp) : out.literal(event.shownTime);
        out.literal("\n");
        if (origin_) {
            putPrintable(out.literal("  Origin: "), event.file);
            out.literal(", offset ").decimal64(event.offset).literal("\n");
        }
        putDoubts(out, event, "  ", "\n");
        if (event.unreadBytes != 0) {
            putBytes(out, "  + ", event.unreadBytes, "unread");
            out.literal("\n");
        }
        body(out, event.body);
        if (raw_ || event.body.empty() ||
            ((event.isUnknown || saysUnknown(event)) &&
             event.body.find("<Hex>") == std::string_view::npos))
            raw(out, event);
        out.literal("\n");
    }

private:
    void raw(mpu::TextWriter& out, const DecodedEvent& event) {
        if (event.payload.empty())
            return;
        payload_.clear();
        out.literal("  Payload:\n");
        dump(out, 2, putPayload(payload_, event));
    }

    static void line(mpu::TextWriter& out, const char* name, std::string_view text) {
        if (text.empty())
            return;
        putPrintable(out.literal("  ").literal(name).literal(": "), text);
        out.literal("\n");
    }

    void body(mpu::TextWriter& out, std::string_view text) {
        const std::vector<BodyItem>& items = parser_.parse(text);
        if (items.empty())
            return;
        out.literal("  Body:\n");
        std::size_t depth = 2;
        for (const BodyItem& item : items) {
            switch (item.type) {
            case BodyItem::Element:
                named(out, depth, item.name, item.text);
                break;
            case BodyItem::Group:
                indent(out, depth++);
                out.literal(item.name).literal(":\n");
                break;
            case BodyItem::End:
                --depth;
                break;
            case BodyItem::Text:
                block(out, depth, item.text);
                break;
            }
        }
    }

    static void indent(mpu::TextWriter& out, std::size_t depth) {
        for (std::size_t i = 0; i < depth; ++i)
            out.literal("  ");
    }

    // A value of one line after its name, any other below it.
    static void named(mpu::TextWriter& out, std::size_t depth, std::string_view name,
                      std::string_view value) {
        while (!value.empty() && value.back() == '\n')
            value.remove_suffix(1);
        indent(out, depth);
        out.literal(name).literal(":");
        if (value.find('\n') != std::string_view::npos || isLongHex(value) ||
            nextGroup(value) != value.size()) {
            out.literal("\n");
            block(out, depth + 1, value);
        } else {
            if (!value.empty())
                putPrintable(out.literal(" "), value);
            out.literal("\n");
        }
    }

    static void block(mpu::TextWriter& out, std::size_t depth, std::string_view text) {
        if (isLongHex(text)) {
            dump(out, depth, text);
            return;
        }
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            std::string_view rest = line;
            do {
                const std::string_view group = rest.substr(0, nextGroup(rest));
                rest.remove_prefix(group.size());
                indent(out, depth);
                putPrintable(out, group);
                out.literal("\n");
            } while (!rest.empty());
        }
    }

    // "0010  00112233 44556677 8899AABB CCDDEEFF  ................"
    static void dump(mpu::TextWriter& out, std::size_t depth, std::string_view digits) {
        constexpr std::size_t words = kDumpLine / 4 * 9; // of eight digits and a blank
        for (std::size_t at = 0; at < digits.size(); at += 2 * kDumpLine) {
            const std::string_view line = digits.substr(at, 2 * kDumpLine);
            indent(out, depth);
            out.hexUpper(at / 2, 4).literal("  ");
            char* const to = out.reserve(words + 1 + kDumpLine);
            std::memset(to, ' ', words + 1);
            char* const characters = to + words + 1;
            for (std::size_t i = 0; i < line.size(); i += 2) {
                std::memcpy(to + i + i / 8, &line[i], 2);
                const char c =
                    static_cast<char>(digitValue(line[i]) << 4 | digitValue(line[i + 1]));
                characters[i / 2] = mpu::isPrintable(c) ? c : '.';
            }
            out.commit(characters + line.size() / 2);
            out.literal("\n");
        }
    }

    const bool colour_;
    const bool raw_;
    const bool origin_;
    mpu::BodyWriter payload_;
    BodyParser parser_;
};

// As Avrel_Event::str() renders it. Line breaks in it are escaped so that an event is one line.
class LinePrinter : public LinesPrinter {
public:
    explicit LinePrinter(const PrintOptions& options)
        : raw_(options.raw), origin_(options.origin) {}

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        putPrintable(out.literal("Enclosure Ser#: '"), event.enclosureSerialNumber);
        putPrintable(out.literal("', Card Ser#: '"), event.controllerSerialNumber);
        out.literal("', Slot: ").integer(event.controllerSlotID);
        out.literal(", Log Instance # ").integer(event.eventLogInstanceNumber);
        out.literal(", Sequence ID=").integer(event.sequenceID);
        out.literal(", Timestamp=");
        event.shownTime.empty() ? out.integer(event.timestamp) : out.literal(event.shownTime);
        putPrintable(out.literal(", Source: '"), event.source);
        putPrintable(out.literal("', Category: '"), event.category);
        out.literal("', EventType=").integer(event.eventType);
        putPrintable(out.literal(", EventID: '"), event.eventID);
        putPrintable(out.literal("', Summary: '"), event.summary);
        putPrintable(out.literal("', Body: '"), event.body);
        if (raw_)
            putPayload(out.literal("', Payload: '"), event);
        if (origin_) {
            putPrintable(out.literal("', File: '"), event.file);
            out.literal("', Offset=").decimal64(event.offset).literal("\n");
        } else {
            out.literal("'\n");
        }
    }

private:
    const bool raw_;
    const bool origin_;
};

} // namespace

std::unique_ptr<Printer> makeTextPrinter(const PrintOptions& options) {
    return std::make_unique<TextPrinter>(options);
}

std::unique_ptr<Printer> makeLinePrinter(const PrintOptions& options) {
    return std::make_unique<LinePrinter>(options);
}

} // namespace Pegasus::formats
