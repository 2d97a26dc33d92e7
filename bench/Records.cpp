#include "bench/Records.h"

#include "event/MPUEvent.h"
#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Sample.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace Pegasus::bench {

namespace {

using mpu::message_header::kSize;

std::unique_ptr<Avrel_Event> decode(const std::string& message) {
    const CMAPMessageHeader header(message.data());
    Avrel_memory_istream in(message.data() + kSize, message.size() - kSize);
    return std::unique_ptr<Avrel_Event>(MPUEvent(header, in).create_Avrel_Event());
}

std::string utf8(const String& text) {
    return std::string(text.getCString());
}

std::vector<String> textsOf(const Avrel_Event& event) {
    return {event.getEnclosureSerialNumber(),
            event.getControllerSerialNumber(),
            event.getSource(),
            event.getCategory(),
            event.getEventID(),
            event.getSummary(),
            event.getBody()};
}

const char* familyOf(unsigned source) {
    switch (source) {
    case 5:
    case 7:
    case 9:
    case 10:
        return "data path";
    case 6:
    case 22:
    case 31:
    case 33:
        return "protocol";
    case 18:
    case 19:
    case 23:
    case 24:
    case 25:
    case 29:
    case 30:
        return "management";
    default:
        return "only dumped";
    }
}

// All kinds of records, grouped by what `nameOf` says of them.
template <class NameOf>
std::vector<Stream> grouped(NameOf nameOf) {
    std::vector<Stream> streams;
    mpu::SampleWriter samples(1);
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
            const std::string name = nameOf(module, kind);
            Stream* stream = nullptr;
            for (Stream& known : streams)
                if (known.name == name)
                    stream = &known;
            if (!stream)
                stream = &streams.emplace_back(Stream{name, {}});
            stream->messages.push_back(samples.message(module, kind));
        }
    return streams;
}

} // namespace

std::vector<Stream> kinds() {
    return grouped([](const mpu::Module& module, const mpu::RecordKind& kind) {
        return std::string(module.decoder) + ": " + kind.title();
    });
}

std::vector<Stream> decoders() {
    return grouped([](const mpu::Module& module, const mpu::RecordKind&) {
        return std::string(module.decoder);
    });
}

std::vector<Stream> families() {
    return grouped(
        [](const mpu::Module& module, const mpu::RecordKind&) { return familyOf(module.source); });
}

Stream mixed() {
    return grouped([](const mpu::Module&, const mpu::RecordKind&) { return "mixed"; }).at(0);
}

std::size_t decodeOne(const std::string& message) {
    const std::unique_ptr<Avrel_Event> event = decode(message);
    return event->getBody().size() + event->getSummary().size();
}

// ---- the plain decoder
// ---------------------------------------------------------------------------

namespace {

bool isKept(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           (c != '\0' && std::strchr(" \n\t:.,-/#_()[]\"'", c) != nullptr);
}

std::string safe(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t gt = text[i] == '<' ? text.find('>', i + 2) : std::string::npos;
        if (gt != std::string::npos) {
            const std::string name = text.substr(i + 1, gt - i - 1);
            const std::size_t closer = text.find("</" + name, gt + 1);
            if (closer != std::string::npos && closer + name.size() + 2 < text.size()) {
                out += "<" + name + ">" + safe(text.substr(gt + 1, closer - gt - 1));
                out += text.substr(closer, name.size() + 3);
                i = closer + name.size() + 3;
                continue;
            }
        }
        const char c = text[i++];
        if (c == '=')
            out += ": ";
        else
            out += isKept(c) ? c : '?';
    }
    return out;
}

std::string format(const char* form, ...) __attribute__((format(printf, 1, 2)));
std::string format(const char* form, ...) {
    char room[512];
    va_list arguments;
    va_start(arguments, form);
    std::vsnprintf(room, sizeof room, form, arguments);
    va_end(arguments);
    return room;
}

} // namespace

PlainDecoder::PlainDecoder(const std::string& message) : message_(message) {
    const std::vector<String> texts = textsOf(*decode(message));
    for (std::size_t i = 0; i < 6; ++i)
        texts_[i] = utf8(texts[i]);
    expected_ = utf8(texts[6]);
    parse(expected_);
    safe_ = safe(body()) == expected_;
    if (!safe_ && body() != expected_)
        throw std::logic_error("the plain decoder gives another body: " + expected_);
}

void PlainDecoder::parse(const std::string& text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] == '<') {
        const std::size_t gt = text.find('>', i);
        Field field{Field::Text, text.substr(i + 1, gt - i - 1), 0, 0, false, {}, {}};
        i = gt + 1;
        if (field.tag[0] == '/') {
            field.kind = Field::Close;
            field.tag.erase(0, 1);
        } else if (i < text.size() && text[i] == '<' && text[i + 1] != '/') {
            field.kind = Field::Open;
        } else {
            const std::size_t end = text.find("</", i);
            field.text = text.substr(i, end - i);
            i = text.find('>', end) + 1;
            if (field.tag == "Hex") {
                field.kind = Field::Bytes;
                for (std::size_t at = 0; at + 1 < field.text.size(); at += 2)
                    field.text[at / 2] = static_cast<char>(
                        std::strtoul(field.text.substr(at, 2).c_str(), nullptr, 16));
                field.text.resize(field.text.size() / 2);
            }
            char* rest = nullptr;
            const bool digits =
                field.kind == Field::Text && !field.text.empty() && field.text.size() < 19;
            if (digits && field.text.starts_with("0x") &&
                field.text.find('x', 2) == std::string::npos) {
                field.number = std::strtoull(field.text.c_str() + 2, &rest, 16);
                field.digits = static_cast<int>(field.text.size()) - 2;
                field.upper = field.text.find_first_of("ABCDEF") != std::string::npos;
                if (*rest == '\0' && field.digits > 0)
                    field.kind = Field::Hex;
            } else if (digits) {
                field.number = std::strtoull(field.text.c_str(), &rest, 10);
                if (*rest == '\0' && std::to_string(field.number) == field.text)
                    field.kind = Field::Unsigned;
                else if (*rest == '\0' &&
                         std::to_string(static_cast<std::int64_t>(field.number)) == field.text)
                    field.kind = Field::Signed;
            }
        }
        const std::size_t next = std::min(text.find('<', i), text.size());
        field.behind = text.substr(i, next - i);
        i = next;
        fields_.push_back(field);
    }
    raw_ = text.substr(i);
}

std::string PlainDecoder::body() const {
    std::string out;
    for (const Field& field : fields_) {
        const std::string tag =
            field.tag.empty() ? field.tag : CMAPMessageHeader::cmapXmlTagNameFix(field.tag.c_str());
        const char* name = tag == field.tag ? tag.c_str() : field.tag.c_str();
        switch (field.kind) {
        case Field::Open:
            out += format("<%s>", name);
            break;
        case Field::Close:
            out += format("</%s>", name);
            break;
        case Field::Signed:
            out += format("<%s>%lld</%s>", name, static_cast<long long>(field.number), name);
            break;
        case Field::Unsigned:
            out +=
                format("<%s>%llu</%s>", name, static_cast<unsigned long long>(field.number), name);
            break;
        case Field::Hex:
            out += field.upper ? format("<%s>0x%0*llX</%s>", name, field.digits,
                                        static_cast<unsigned long long>(field.number), name)
                               : format("<%s>0x%0*llx</%s>", name, field.digits,
                                        static_cast<unsigned long long>(field.number), name);
            break;
        case Field::Text:
            out += format("<%s>", name) + field.text + format("</%s>", name);
            break;
        case Field::Bytes:
            out += format("<%s>", name);
            for (unsigned char byte : field.text)
                out += format("%02X", byte);
            out += format("</%s>", name);
            break;
        }
        out += field.behind;
    }
    return out + raw_;
}

std::size_t PlainDecoder::decodeOne() const {
    const CMAPMessageHeader header(message_.data());
    Avrel_memory_istream in(message_.data() + kSize, message_.size() - kSize);
    const MPUEvent message(header, in);
    std::unique_ptr<Avrel_Event> event(new Avrel_Event(nullptr, 0));
    event->setEnclosureSerialNumber(std::string(message_.c_str() + kSize).c_str());
    event->setControllerSerialNumber(std::string(message_.c_str() + kSize + 64).c_str());
    event->setSource(std::string(texts_[2]).c_str());
    event->setCategory(std::string(texts_[3]).c_str());
    event->setEventID(format("%d", 26).c_str());
    event->setEventID(safe(format("%s", texts_[4].c_str())).c_str());
    event->setSummary(safe(format("%s", texts_[5].c_str())).c_str());
    event->setBody(safe_ ? safe(body()).c_str() : body().c_str());
    return event->getBody().size() + event->getSummary().size();
}

// ---- the floor
// -----------------------------------------------------------------------------------

Floor::Floor(const std::string& message) : texts_(textsOf(*decode(message))) {}

std::size_t Floor::copyOne() const {
    struct Event {
        void* texts[7];
        std::uint32_t numbers[5];
    };
    std::unique_ptr<Event> event(new Event);
    std::size_t size = 0;
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        const std::size_t bytes = 2 * (texts_[i].size() + 1);
        event->texts[i] = std::malloc(bytes);
        std::memcpy(event->texts[i], static_cast<const void*>(texts_[i].getChar16Data()), bytes);
        size += bytes;
        asm volatile("" : : "r"(event->texts[i]) : "memory"); // the copy is the point
    }
    for (void* text : event->texts)
        std::free(text);
    return size;
}

} // namespace Pegasus::bench
