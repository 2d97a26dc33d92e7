#include "formats/Explanation.h"

#include "event/EmpEvLogMsg_s.h"
#include "formats/ExplanationPage.h"
#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Pegasus::formats {

namespace {

struct HeaderField {
    const char* name;
    const char* form;
    std::uint32_t at;
    std::uint32_t size;
};
constexpr HeaderField kHeaderFields[] = {
    {"enclosureSerialNumber", "%s", 0, 64},
    {"controllerSerialNumber", "%s", 64, 64},
    {"controllerSlotID", "%u", 128, 4},
    {"eventLogInstanceNumber", "%u", 132, 4},
    {"sequenceID", "%u", 136, 4},
    {"timestamp", "%u", 140, 4},
    {"payload length", "%u", 144, 2},
    {"source", "%u", 146, 1},
    {"eventType", "%u", 147, 1},
    {"category", "%u", 148, 1},
    {"payload version", "%u", 149, 1},
    {"event id", "%u", 150, 2},
};
constexpr std::size_t kHeader = sizeof(EmpEvLogMsg_s);

constexpr std::string_view kUses[] = {"header",   "element", "summary", "title",
                                      "decision", "leftOut", "unread"};

std::span<const std::uint8_t> recordOf(const DecodedEvent& event) {
    return {event.payload.data() - kHeader, event.payload.size() + kHeader};
}

std::string valueOf(const HeaderField& field, std::span<const std::uint8_t> record) {
    const mpu::RecordView view(record.data(), record.size());
    switch (field.size) {
    case 1:
        return std::to_string(view.u8(field.at));
    case 2:
        return std::to_string(view.u16(field.at));
    case 4:
        return std::to_string(view.u32(field.at));
    default:
        return {};
    }
}

// The bytes that came of a run, in hexadecimal.
std::string hexOf(const DecodedEvent& event, const ExplainedBytes& bytes) {
    const std::span<const std::uint8_t> record = recordOf(event);
    const std::size_t begin = std::min<std::size_t>(bytes.at, record.size());
    mpu::StackWriter<256> hex;
    hex.hexBytes({reinterpret_cast<const char*>(record.data()) + begin,
                  std::min<std::size_t>(bytes.size - bytes.missing, record.size() - begin)});
    return std::string(hex.view());
}

// The parts of the record that nothing else tells of.
void addUnread(std::vector<ExplainedBytes>& explained, std::size_t size) {
    std::vector<bool> read(size);
    for (const ExplainedBytes& bytes : explained)
        for (std::size_t at = bytes.at; at < std::min<std::size_t>(size, bytes.at + bytes.size);
             ++at)
            read[at] = true;
    for (std::size_t at = 0; at < size; ++at) {
        if (read[at])
            continue;
        if (at > 0 && !read[at - 1] && explained.back().use == ExplainedBytes::Unread)
            ++explained.back().size;
        else
            explained.push_back({ExplainedBytes::Unread, static_cast<std::uint32_t>(at), 1, 0,
                                 Provenance::Documented, "", "", ""});
    }
}

} // namespace

std::vector<ExplainedBytes> explain(const DecodedEvent& event, const Readings& readings,
                                    bool isPlain) {
    std::vector<ExplainedBytes> explained;
    const std::span<const std::uint8_t> record = recordOf(event);
    for (const HeaderField& field : kHeaderFields) {
        std::string value = field.at == 0    ? std::string(event.enclosureSerialNumber)
                            : field.at == 64 ? std::string(event.controllerSerialNumber)
                                             : valueOf(field, record);
        explained.push_back({ExplainedBytes::Header, field.at, field.size, 0,
                             Provenance::Documented, field.form, field.name, std::move(value)});
    }
    BodyParser parser;
    const std::vector<BodyItem>& items = parser.parse(event.body);
    const std::vector<std::size_t> itemOf = readings.itemsOf(event.body, items);
    for (std::size_t i = 0; i < itemOf.size(); ++i) {
        const Reading& reading = readings.all()[i];
        if (reading.at + reading.size <= kHeader)
            continue;
        ExplainedBytes bytes{ExplainedBytes::Decision,
                             reading.at,
                             reading.size,
                             reading.missing,
                             reading.provenance,
                             reading.byCode ? "code" : reading.form,
                             "",
                             ""};
        const auto cut = [&](std::string_view text) {
            if (reading.byCode || !isPlain) // the places don't hold
                return std::string(text);
            const std::size_t begin = std::min(reading.begin, text.size());
            return std::string(text.substr(begin, reading.end - begin));
        };
        if (reading.text == Reading::Summary) {
            bytes.use = ExplainedBytes::Summary;
            bytes.value = cut(event.summary);
        } else if (reading.text == Reading::Title) {
            bytes.use = ExplainedBytes::Title;
            bytes.value = cut(event.eventID);
        } else if (itemOf[i] != Readings::kNone) {
            const BodyItem& item = items[itemOf[i]];
            bytes.use = ExplainedBytes::Element;
            if (isPlain) {
                bytes.name = item.name;
                bytes.value = reading.byCode ? std::string(item.text) : cut(event.body);
            }
        } else if (!reading.byCode) {
            bytes.use = ExplainedBytes::LeftOut;
        }
        explained.push_back(std::move(bytes));
    }
    addUnread(explained, record.size());
    std::stable_sort(explained.begin(), explained.end(),
                     [](const ExplainedBytes& a, const ExplainedBytes& b) { return a.at < b.at; });
    // What code reads twice on its way is told once.
    explained.erase(std::unique(explained.begin(), explained.end(),
                                [](const ExplainedBytes& a, const ExplainedBytes& b) {
                                    return a.at == b.at && a.size == b.size && a.use == b.use &&
                                           a.name == b.name && a.value == b.value;
                                }),
                    explained.end());
    return explained;
}

namespace {

// What a person reads beside the bytes.
std::string meaningOf(const ExplainedBytes& bytes) {
    switch (bytes.use) {
    case ExplainedBytes::Header:
    case ExplainedBytes::Element:
        return (bytes.name.empty() ? "" : bytes.name + ": ") + bytes.value;
    case ExplainedBytes::Summary:
        return "summary: " + bytes.value;
    case ExplainedBytes::Title:
        return "title: " + bytes.value;
    case ExplainedBytes::Decision:
        return "(tells the decoder its way)";
    case ExplainedBytes::LeftOut:
        return "(not shown)";
    case ExplainedBytes::Unread:
        break;
    }
    return "(not read)";
}

class TextExplanation : public ExplanationPrinter {
public:
    explicit TextExplanation(bool colour)
        : colour_(colour), head_(makeBriefPrinter({.colour = colour, .origin = true})) {}

    void print(const DecodedEvent& event, const std::vector<ExplainedBytes>& explained,
               mpu::TextWriter& out) override {
        out.literal("Event ").decimal(event.sequenceID).literal(": ");
        head_->print(event, out);
        out.literal("Offset  Size  Bytes              Format    Becomes\n");
        for (const ExplainedBytes& bytes : explained)
            line(event, bytes, out);
        out.literal("\n");
        if (!told_)
            out.literal("~ assumed place  ? inferred place  ! bytes missing from the record; "
                        "offsets\ncount from the start of the record, whose payload begins at "
                        "152\n\n");
        told_ = true;
    }

private:
    void line(const DecodedEvent& event, const ExplainedBytes& bytes, mpu::TextWriter& out) {
        constexpr std::size_t kShown = 16; // digits
        std::string hex = hexOf(event, bytes);
        if (hex.size() > kShown)
            hex = hex.substr(0, kShown) + "..";
        const char sign = bytes.missing != 0                     ? '!'
                          : bytes.layout == Provenance::Assumed  ? '~'
                          : bytes.layout == Provenance::Inferred ? '?'
                                                                 : ' ';
        const bool isDim =
            bytes.use == ExplainedBytes::Unread || bytes.use == ExplainedBytes::Header;
        out.literal(colour_ && sign != ' ' ? "\x1B[33m" : colour_ && isDim ? "\x1B[2m" : "");
        out.literal(fmt::format("{:>6} {:>5}  {:<18} {:<8} {} ", bytes.at, bytes.size, hex,
                                bytes.form, sign));
        std::string meaning = meaningOf(bytes);
        if (bytes.missing != 0)
            meaning = fmt::format("[{} missing] ", bytes.missing) + meaning;
        putPrintable(out, shortened(meaning, 80 - 44));
        out.literal(colour_ && (sign != ' ' || isDim) ? kPlain : "").literal("\n");
    }

    // No more than `most` characters.
    static std::string shortened(const std::string& text, std::size_t most) {
        std::size_t end = 0;
        std::size_t count = 0;
        while (end < text.size() && count < most) {
            do
                ++end;
            while (end < text.size() && (text[end] & 0xC0) == 0x80);
            ++count;
        }
        if (end == text.size())
            return text;
        while (count-- > most - 2)
            do
                --end;
            while ((text[end] & 0xC0) == 0x80);
        return text.substr(0, end) + "..";
    }

    const bool colour_;
    bool told_ = false;
    const std::unique_ptr<Printer> head_;
};

class JsonExplanation : public ExplanationPrinter {
public:
    void print(const DecodedEvent& event, const std::vector<ExplainedBytes>& explained,
               mpu::TextWriter& out) override {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> json(buffer);
        const auto text = [&](const char* key, std::string_view value) {
            json.Key(key);
            json.String(value.empty() ? "" : value.data(),
                        static_cast<rapidjson::SizeType>(value.size()));
        };
        const auto number = [&](const char* key, std::uint32_t value) {
            json.Key(key);
            json.Uint(value);
        };
        json.StartObject();
        text("file", event.file);
        json.Key("offset");
        json.Uint64(event.offset);
        number("sequenceID", event.sequenceID);
        text("source", event.source);
        text("eventID", event.eventID);
        text("summary", event.summary);
        text("layout", event.layout);
        number("missingBytes", event.missingBytes);
        number("unreadBytes", event.unreadBytes);
        number("size", static_cast<std::uint32_t>(recordOf(event).size()));
        json.Key("bytes");
        json.StartArray();
        for (const ExplainedBytes& bytes : explained) {
            json.StartObject();
            number("offset", bytes.at);
            number("size", bytes.size);
            number("missing", bytes.missing);
            text("hex", hexOf(event, bytes));
            text("use", kUses[bytes.use]);
            text("layout", nameOf(bytes.layout));
            text("format", bytes.form);
            text("name", bytes.name);
            text("value", bytes.value);
            json.EndObject();
        }
        json.EndArray();
        json.EndObject();
        out.literal({buffer.GetString(), buffer.GetSize()}).literal("\n");
    }
};

class HtmlExplanation : public ExplanationPrinter {
public:
    void begin(mpu::TextWriter& out) override { out.literal(kExplanationBegin); }
    void end(mpu::TextWriter& out) override { out.literal(kExplanationEnd); }

    void print(const DecodedEvent& event, const std::vector<ExplainedBytes>& explained,
               mpu::TextWriter& out) override {
        out.literal("<section><h2>Event ").decimal(event.sequenceID);
        putXml(out.literal(": "), event.eventID);
        putXml(out.literal("</h2><p>"), event.summary);
        putXml(out.literal("</p><p>"), event.file);
        out.literal(", offset ").decimal64(event.offset).literal("</p><div><pre>");
        const std::span<const std::uint8_t> record = recordOf(event);
        for (std::size_t at = 0; at < record.size(); ++at) {
            if (at % 16 == 0)
                out.literal(at == 0 ? "" : "\n").literal(fmt::format("<i>{:>5}</i> ", at));
            out.literal(fmt::format("<b data-at={}>{:02X}</b>", at, record[at]));
            out.literal(at % 4 == 3 ? " " : "");
        }
        out.literal("</pre><table><tr><th>Offset<th>Size<th>Format<th>Becomes\n");
        for (const ExplainedBytes& bytes : explained) {
            out.literal(
                fmt::format("<tr class={} data-at={} data-size={}><td>{}<td>{}<td>",
                            bytes.use == ExplainedBytes::Unread ? "unread" : nameOf(bytes.layout),
                            bytes.at, bytes.size, bytes.at, bytes.size));
            putXml(out, bytes.form);
            putXml(out.literal("<td>"), meaningOf(bytes));
            if (bytes.missing != 0)
                out.literal(" <em>! ").decimal(bytes.missing).literal(" missing</em>");
            if (bytes.layout != Provenance::Documented)
                out.literal(" <em>").literal(nameOf(bytes.layout)).literal("</em>");
            out.literal("\n");
        }
        out.literal("</table></div></section>\n");
    }
};

} // namespace

std::unique_ptr<ExplanationPrinter> makeTextExplanation(bool colour) {
    return std::make_unique<TextExplanation>(colour);
}

std::unique_ptr<ExplanationPrinter> makeJsonExplanation(bool) {
    return std::make_unique<JsonExplanation>();
}

std::unique_ptr<ExplanationPrinter> makeHtmlExplanation(bool) {
    return std::make_unique<HtmlExplanation>();
}

} // namespace Pegasus::formats
