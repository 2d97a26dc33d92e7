#include "decoders/datapath/AWR8P_Event.h"

#include "decoders/datapath/Entries.h"
#include "event/Ascii.h"

#include <array>

namespace Pegasus {

using namespace mpu;
using datapath::Entries;

namespace {

enum Type : std::uint32_t { kText, kBytes, kContainer, kName };

constexpr std::size_t kHeader = sizeof(awrEvtHdr_s);
constexpr unsigned kMaxDepth = 32; // real trees have a few levels

constexpr std::size_t kLine = 16; // bytes of a dump's line
constexpr std::size_t kHalf = 8;
constexpr std::size_t kLineRoom = 8 * kLine + 2; // four digits or blanks a byte, four characters

// What a dump shows of a byte; 0 for the two that markup needs written out.
constexpr auto kShown = [] {
    std::array<char, 256> shown{};
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const char c = static_cast<char>(i);
        shown[i] = isPrintable(c) && c != ';' && c != '=' ? c : '.';
    }
    shown['<'] = shown['>'] = 0;
    return shown;
}();

std::size_t contentOf(std::uint32_t length) {
    return static_cast<std::int32_t>(length) < 0 ? 0 : length;
}

// "41 42 43 44 45 46 47 48  49 4a 4b 4c 4d 4e 4f 50 ABCDEFGH|IJKLMNOP"; at most kLine bytes.
char* putLine(char* out, std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out = putHexByte(out, static_cast<std::uint8_t>(bytes[i]), Case::Lower);
        out[0] = out[1] = ' ';
        out += i + 1 == kHalf ? 2 : 1;
    }
    // Readers know the blanks of a missing byte as four, not three.
    const std::size_t blanks = 4 * (kLine - bytes.size()) + (bytes.size() < kHalf);
    std::memset(out, ' ', blanks);
    out += blanks;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        *out = kShown[static_cast<unsigned char>(bytes[i])];
        out = *out != 0 ? out + 1 : putText(out, bytes[i] == '<' ? "&lt;" : "&gt;");
        if (i + 1 == kHalf)
            *out++ = '|';
    }
    return out;
}

void putDump(Entries& entries, std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size(); at += kLine) {
        char tag[kHexRoom + 2] = "_";
        *putHex(tag + 1, at, 4, Case::Lower) = '\0';
        char line[kLineRoom];
        entries.text(tag, {line, putLine(line, bytes.substr(at, kLine))});
    }
}

// The item with all of its content, as it is in memory.
RecordView viewOf(const awrEvtHdr_s* item) {
    return {item, kHeader + std::min<std::size_t>(contentOf(item->length), 0xFFFF)};
}

} // namespace

AWR8P_Event::AWR8P_Event(const EmpEvLogMsg_s* record, int length)
    : AvrelEvent(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    BodyWriter body;
    Entries entries(body);
    parse(entries,
          RecordView::of(record, static_cast<unsigned int>(length)).subview(sizeof *record));
    startBody(body.view());
}

AWR8P_Event::~AWR8P_Event() = default;

void AWR8P_Event::awr8p_parse_evt(const awrEvtHdr_s* item) {
    Entries::Scratch scratch;
    Entries entries(scratch, *this);
    parse(entries, viewOf(item));
}

void AWR8P_Event::awr8p_dump_bin(const awrEvtHdr_s* item) {
    Entries::Scratch scratch;
    Entries entries(scratch, *this);
    putDump(entries, viewOf(item).bytes(kHeader));
}

void AWR8P_Event::parse(Entries& entries, RecordView item) {
    // Where the walk goes on behind the containers that it is in.
    struct {
        std::size_t next;
        std::size_t end;
    } outer[kMaxDepth];
    unsigned depth = 0;
    std::size_t at = 0;
    // What lies behind the outermost item isn't part of the tree.
    std::size_t end = std::min(item.size(), kHeader + contentOf(item.u32(4)));
    for (;;) {
        if (end - at < kHeader) {
            if (depth == 0)
                return;
            --depth;
            at = outer[depth].next;
            end = outer[depth].end;
            continue;
        }
        const std::uint32_t type = item.u32(at);
        const std::uint32_t length = item.u32(at + 4);
        const std::size_t content = at + kHeader;
        const std::size_t size = std::min(contentOf(length), end - content);
        at = static_cast<std::int32_t>(length) < 0 ? end : content + size;
        switch (type) {
        case kText: {
            const std::string_view text = item.text(content, size);
            entries.text("_", text);
            if (!summarySet_) {
                summarySet_ = 1;
                assignText(summary_, text);
            }
            break;
        }
        case kBytes:
            putDump(entries, item.bytes(content, size));
            break;
        case kContainer:
            if (depth < kMaxDepth) {
                outer[depth++] = {at, end};
                at = content;
                end = content + size;
            }
            break;
        case kName:
            assignText(eventID_, item.text(content, size));
            break;
        }
    }
}

} // namespace Pegasus
