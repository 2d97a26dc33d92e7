#include "capture/Recognise.h"

#include "event/BigEndian.h"
#include "platform/cmap/CMAPMessageHeader.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace Pegasus::capture {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kMaxLayers = 3;
constexpr std::size_t kMessageHeader = mpu::message_header::kSize;
constexpr std::size_t kRecordHeader = sizeof(EmpEvLogMsg_s);
constexpr std::size_t kShortest = kMessageHeader + kRecordHeader;

// ---- evidence ----------------------------------------------------------------------------------

// A serial number is printable and ends inside its 64 bytes; it may be empty.
bool isSerial(Bytes field) {
    const auto end = std::find(field.begin(), field.end(), 0);
    return end != field.end() &&
           std::all_of(field.begin(), end, [](std::uint8_t c) { return c >= ' ' && c <= '~'; });
}

// Whether the header of a record is here.
bool isRecord(Bytes bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < kRecordHeader)
        return false;
    const Bytes record = bytes.subspan(at, kRecordHeader);
    const std::uint8_t type = record[147];
    return record[146] < 34 && ((type >= 1 && type <= 3) || (type >= 101 && type <= 103)) &&
           record[148] >= 1 && record[148] <= 14 && isSerial(record.first(64)) &&
           isSerial(record.subspan(64, 64));
}
std::size_t recordSize(Bytes bytes, std::size_t at) {
    return kRecordHeader +
           mpu::loadBig<std::uint16_t>(&bytes[at + offsetof(EmpEvLogMsg_s, evStructLength)]);
}

// Whether a message is here whose two lengths agree.
bool isMessage(Bytes bytes, std::size_t at) {
    return isRecord(bytes, at + kMessageHeader) &&
           mpu::loadBig<std::uint16_t>(&bytes[at + mpu::message_header::kLength]) ==
               kMessageHeader + recordSize(bytes, at + kMessageHeader);
}

struct Evidence {
    std::optional<Framing> framing;
    bool undecided = false; // until more is there
};

// At the very beginning.
Evidence firstEvidence(Bytes bytes, bool whole) {
    if (isRecord(bytes, 0) && bytes[0] != 0) // no message begins with printable characters
        return {Framing::Record};
    if (isMessage(bytes, 0))
        return {Framing::Message};
    if (bytes.size() < kShortest && !whole)
        return {{}, true};
    return {isRecord(bytes, 0) ? std::optional(Framing::Record) : std::nullopt};
}

// From `at` on, to where it got. A record alone must be followed by another: a message may have
// lost its beginning.
Evidence anyEvidence(Bytes bytes, bool whole, std::size_t& at) {
    for (; at + kShortest <= bytes.size() || (whole && at + kRecordHeader <= bytes.size()); ++at) {
        if (isMessage(bytes, at))
            return {Framing::Message};
        if (bytes[at] == 0 || !isRecord(bytes, at))
            continue;
        const std::size_t next = at + recordSize(bytes, at);
        if (!whole && bytes.size() < next + kRecordHeader)
            return {{}, true};
        if (isRecord(bytes, next))
            return {Framing::Record};
    }
    return {{}, !whole};
}

// ---- other formats -----------------------------------------------------------------------------

struct Magic {
    std::size_t offset;
    std::string_view bytes;
    const char* name;
};

template <std::size_t size>
constexpr std::string_view bytesOf(const char (&text)[size]) { // with NULs
    return {text, size - 1};
}

constexpr struct {
    Magic magic;
    Compression compression;
} kCompressed[] = {
    {{0, bytesOf("\x1F\x8B\x08"), "gzip data"}, Compression::Gzip},
    {{0, bytesOf("\xFD\x37zXZ\0"), "xz data"}, Compression::Xz},
    {{0, bytesOf("\x28\xB5\x2F\xFD"), "zstd data"}, Compression::Zstd},
};

// Nothing in these can be found as it is.
constexpr Magic kForeign[] = {
    {0, bytesOf("\xFF\xD8\xFF"), "a JPEG image"},
    {0, bytesOf("\x89PNG\r\n\x1A\n"), "a PNG image"},
    {0, bytesOf("GIF8"), "a GIF image"},
    {0, bytesOf("%PDF-"), "a PDF document"},
    {0, bytesOf("PK\3\4"), "a ZIP archive, which must be unpacked first"},
    {0, bytesOf("7z\xBC\xAF\x27\x1C"), "a 7-Zip archive, which must be unpacked first"},
    {0, bytesOf("Rar!\x1A\7"), "a RAR archive, which must be unpacked first"},
    {0, bytesOf("BZh"), "bzip2 data, which must be unpacked first"},
    {0, bytesOf("\x04\x22\x4D\x18"), "LZ4 data, which must be unpacked first"},
};

// Messages are searched for in these.
constexpr Magic kContainers[] = {
    {0, bytesOf("\xA1\xB2\xC3\xD4"), "a pcap file"},
    {0, bytesOf("\xD4\xC3\xB2\xA1"), "a pcap file"},
    {0, bytesOf("\xA1\xB2\x3C\x4D"), "a pcap file"},
    {0, bytesOf("\x4D\x3C\xB2\xA1"), "a pcap file"},
    {0, bytesOf("\x0A\x0D\x0D\x0A"), "a pcapng file"},
    {0,
     bytesOf("\x7F"
             "ELF"),
     "an ELF file"},
    {257, bytesOf("ustar"), "a tar archive"},
    {510, bytesOf("\x55\xAA"), "a disk image"},
};

bool matches(const Magic& magic, Bytes bytes) {
    return bytes.size() >= magic.offset + magic.bytes.size() &&
           std::memcmp(&bytes[magic.offset], magic.bytes.data(), magic.bytes.size()) == 0;
}
const char* nameIn(std::span<const Magic> table, Bytes bytes) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const Magic& magic) { return matches(magic, bytes); });
    return found == table.end() ? nullptr : found->name;
}

// ---- one layer ---------------------------------------------------------------------------------

struct Layer {
    bool undecided = false;
    const char* name = nullptr;
    std::optional<Compression> compression;
    std::optional<RecognisedText> text;
    std::optional<Framing> framing;
    const char* refusal = nullptr;
};

// Settles in which order the bytes of the words are printed. Only messages tell: the words may be
// those of any host.
void settleWords(std::string_view text, RecognisedText& found) {
    if (found.form.width == 1)
        return;
    const auto shows = [&](bool lowFirst) {
        MemorySource memory(text.data(), text.size());
        TextForm form = found.form;
        form.lowFirst = lowFirst;
        TextSource source(
            memory, [](const std::string&) {}, form);
        std::vector<std::uint8_t> bytes(LookaheadSource::kSize);
        std::size_t size = 0;
        while (const std::size_t got = source.read(bytes.data() + size, bytes.size() - size))
            size += got;
        bytes.resize(size);
        std::size_t at = 1;
        return firstEvidence(bytes, true).framing || anyEvidence(bytes, true, at).framing;
    };
    // xxd and tcpdump print bytes in order, hexdump and od words of the host.
    const bool colon = found.form.kind == TextForm::Colon;
    found.form.lowFirst = shows(colon) == colon;
    if (found.form.lowFirst || !colon)
        found.name += fmt::format(" of {}-byte words, {} byte first", found.form.width,
                                  found.form.lowFirst ? "low" : "high");
}

// Looks at the beginning of a layer, of which more and more is there.
class LayerRecogniser {
public:
    explicit LayerRecogniser(InputHints hints) : hints_(hints) {}
    Layer look(Bytes bytes, bool whole);

private:
    const InputHints hints_;
    TextRecogniser text_;
    std::size_t searched_ = 1; // for messages
};

Layer LayerRecogniser::look(Bytes bytes, bool whole) {
    Layer layer;
    if (bytes.empty() && whole)
        return layer;
    if (hints_.text != true) {
        const Evidence first = firstEvidence(bytes, whole);
        layer.undecided = first.undecided;
        layer.framing = first.framing;
        if (first.undecided || first.framing)
            return layer;
    }
    if (!hints_.text) {
        for (const auto& [magic, compression] : kCompressed)
            if (matches(magic, bytes)) {
                layer.name = magic.name;
                layer.compression = compression;
                return layer;
            }
        layer.refusal = nameIn(kForeign, bytes);
        if (layer.refusal)
            return layer;
    }
    if (hints_.text != false) {
        RecognisedText found;
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const TextVerdict verdict = text_.look(text, whole, found);
        layer.undecided = verdict == TextVerdict::Undecided;
        if (verdict == TextVerdict::Found)
            settleWords(text.substr(found.start, found.end - found.start), found);
        if (hints_.text) { // from its first line on, and whatever it is
            found.start = 0;
            found.line = 1;
        }
        if (hints_.text || verdict == TextVerdict::Found)
            layer.text = std::move(found);
        else if (verdict == TextVerdict::Foreign)
            layer.refusal = "text without hexadecimal or base64 bytes";
        if (verdict != TextVerdict::Binary || hints_.text)
            return layer;
    }
    layer.name = nameIn(kContainers, bytes);
    const Evidence any = anyEvidence(bytes, whole, searched_);
    layer.undecided = any.undecided;
    layer.framing = any.framing;
    return layer;
}

} // namespace

RecognisedInput::RecognisedInput(ByteSource& input, InputHints hints, const FaultHandler& report)
    : bytes_(&input) {
    const auto put = [&](std::unique_ptr<ByteSource> source) {
        bytes_ = source.get();
        layers_.push_back(std::move(source));
    };
    for (std::size_t depth = 0;; ++depth) {
        auto looking = std::make_unique<LookaheadSource>(*bytes_);
        LookaheadSource& ahead = *looking;
        put(std::move(looking));
        LayerRecogniser recogniser(hints);
        Layer layer = recogniser.look(ahead.ahead(), false);
        while (layer.undecided) {
            const bool whole = !ahead.lookFurther();
            layer = recogniser.look(ahead.ahead(), whole);
        }
        if (layer.name && !hints.framing)
            describe(layer.name);
        if (layer.refusal) {
            refuse(fmt::format("not a capture: {}", layer.refusal));
        } else if ((layer.compression || layer.text) && depth == kMaxLayers) {
            refuse(fmt::format("packed more than {} times", kMaxLayers));
        } else if (layer.compression) {
            if (auto source = unpack(*layer.compression, ahead, report)) {
                put(std::move(source));
                continue;
            }
            refuse("this build cannot unpack it");
        } else if (layer.text) {
            const RecognisedText& text = *layer.text;
            if (!hints.text)
                describe(text.line == 1 ? text.name
                                        : fmt::format("{} from line {} on", text.name, text.line));
            else
                hints.text = false; // but what it stands for is none
            ahead.skip(text.start);
            put(std::make_unique<TextSource>(ahead, report, text.form, text.line));
            continue;
        } else if (hints.framing && layer.framing && hints.framing != layer.framing) {
            refuse(layer.framing == Framing::Message ? "holds messages, not bare records"
                                                     : "holds bare records, not messages");
        } else {
            framing_ = hints.framing.value_or(layer.framing.value_or(Framing::Message));
            if (!hints.framing && framing_ == Framing::Record)
                describe("bare records");
        }
        return;
    }
}

void RecognisedInput::refuse(std::string_view why) {
    refusal_ = description_.empty() ? why : fmt::format("{}: {}", description_, why);
}

void RecognisedInput::describe(std::string_view what) {
    description_ += description_.empty() ? "" : ", ";
    description_ += what;
}

} // namespace Pegasus::capture
