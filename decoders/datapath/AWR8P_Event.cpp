#include "decoders/datapath/AWR8P_Event.h"

#include "decoders/Decode.h"
#include "decoders/datapath/AWR8P_Layouts.h"
#include "decoders/datapath/Entries.h"
#include "event/Ascii.h"

#include <array>

namespace Pegasus {

using namespace mpu;

namespace {

using datapath::addEntries;
using datapath::putEntry;

constexpr std::string_view kTextTag = "_";

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

// The items of a tree that are no containers, one after the other. An item is inside its container
// and the record.
class Items {
public:
    explicit Items(const RecordView& tree)
        : tree_(tree), end_(std::min(tree.size(), kHeader + contentOf(tree.u32(4)))) {}

    // False after the last one.
    bool next();
    std::uint32_t type() const { return type_; }
    RecordView content() const { return content_; }
    Untrusted text() const { return content_.text(0); }

private:
    RecordView tree_;
    std::uint32_t type_ = 0;
    RecordView content_;
    std::size_t at_ = 0;
    std::size_t end_; // of the innermost container
    // Where the walk goes on after the containers that it is in.
    struct {
        std::size_t next;
        std::size_t end;
    } outer_[kMaxDepth];
    unsigned depth_ = 0;
};

bool Items::next() {
    for (;;) {
        if (end_ - at_ < kHeader) {
            if (depth_ == 0)
                return false;
            --depth_;
            at_ = outer_[depth_].next;
            end_ = outer_[depth_].end;
            continue;
        }
        type_ = tree_.u32(at_);
        const std::uint32_t length = tree_.u32(at_ + 4);
        const std::size_t content = at_ + kHeader;
        const std::size_t size = std::min(contentOf(length), end_ - content);
        at_ = static_cast<std::int32_t>(length) < 0 ? end_ : content + size;
        if (type_ != kContainer) {
            content_ = tree_.subview(content, size);
            return true;
        }
        if (depth_ < kMaxDepth) {
            outer_[depth_++] = {at_, end_};
            at_ = content;
            end_ = content + size;
        }
    }
}

void putLines(TextWriter& body, Untrusted dumped) {
    const std::string_view bytes = dumped.raw();
    for (std::size_t at = 0; at < bytes.size(); at += kLine) {
        char tag[kHexRoom + 1] = "_";
        const char* end = putHex(tag + 1, at, 4, Case::Lower);
        char line[kLineRoom];
        putEntry(body, {tag, static_cast<std::size_t>(end - tag)},
                 Untrusted({line, putLine(line, bytes.substr(at, kLine))}));
    }
}

// The entries of a text or dump.
void putItem(TextWriter& body, const Items& item) {
    if (item.type() == kText)
        putEntry(body, kTextTag, item.text());
    else if (item.type() == kBytes)
        putLines(body, item.content().bytes(0));
}

// The item with all of its content, as it is in memory.
RecordView viewOf(const awrEvtHdr_s* item) {
    return {item, kHeader + std::min<std::size_t>(contentOf(item->length), 0xFFFF)};
}

} // namespace

void awr::putTree(Draft& draft, const Record&, const RecordView& data) {
    bool summarySet = false;
    draft.body.setSanitize(Sanitize::No);
    for (Items items(data); items.next();) {
        putItem(draft.body, items);
        if (items.type() == kText && !summarySet) {
            summarySet = true;
            draft.summary.untrusted(items.text());
        } else if (items.type() == kName) {
            draft.title.clear();
            draft.title.untrusted(items.text());
            draft.isTitled = true;
        }
    }
}

void awr::decode(const Record& record, Draft& draft) {
    putTree(draft, record, record.payload());
}

AWR8P_Event::AWR8P_Event(const EmpEvLogMsg_s* record, int length)
    : AvrelEvent(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    Draft draft;
    awr::decode(Record(record, static_cast<unsigned int>(length), &draft.footprint), draft);
    summarySet_ = draft.body.view().find("<_>") != std::string_view::npos; // the first text is it
    take(draft);
}

AWR8P_Event::~AWR8P_Event() = default;

void AWR8P_Event::awr8p_parse_evt(const awrEvtHdr_s* item) {
    for (Items items(viewOf(item)); items.next();) {
        BodyWriter entries;
        putItem(entries, items);
        addEntries(*this, entries, kTextTag);
        if (items.type() == kText && summarySet_ == 0) {
            summarySet_ = 1;
            assignText(summary_, items.text().raw());
        } else if (items.type() == kName) {
            assignText(eventID_, items.text().raw());
        }
    }
}

void AWR8P_Event::awr8p_dump_bin(const awrEvtHdr_s* item) {
    BodyWriter entries;
    putLines(entries, viewOf(item).bytes(kHeader));
    addEntries(*this, entries, {});
}

} // namespace Pegasus
