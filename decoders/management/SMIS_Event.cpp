#include "decoders/management/SMIS_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/management/SMIS_Layouts.h"
#include "decoders/management/Titles.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::smis;

namespace {

enum Kind : std::uint8_t { kText, kDump, kMessage, kObject, kKeyValue };

constexpr TitledEvent kEvents[] = {
    {2000, "Error Text", "Warning Text", "Text Information", kText},
    {2005, "Error Dump Data", "Warning Dump Data", "Dump Information", kDump},
    {2013, "MMSG Error", "MMSG Warning", "MMSG Information", kMessage},
    {2018, "Error in CMAP ManagedObject internal processing",
     "Warning in CMAP ManagedObject internal processing", "ManagedObject Information", kObject},
    {2020, "Error Data", "Warning Data", "Informational Data", kKeyValue},
};

constexpr std::size_t kLongestSummary = 62;

// The first sentence of `text`.
std::string_view summarize(std::string_view text, int limit) {
    std::size_t end = kLongestSummary;
    if (limit > 0)
        end = std::min(end, static_cast<std::size_t>(limit));
    std::size_t blank = 0; // the last one
    for (std::size_t i = 0; i <= end; ++i) {
        const char c = i < text.size() ? text[i] : '\0';
        if (c == '\0' || c == '.' || c == ';')
            return text.substr(0, i);
        if (c == ':' && i > 1 && text[i - 2] == '(' && text[i - 1] == ')')
            return text.substr(0, i - 1);
        if (isBlank(c))
            blank = i;
    }
    const bool bracket = blank > 0 && text[blank] == ' ' && text[blank - 1] == '(';
    return text.substr(0, bracket ? blank - 1 : blank);
}

std::string_view untilNul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

std::string_view withoutTrailingNuls(std::string_view text) {
    return text.substr(0, text.find_last_not_of('\0') + 1);
}

// Keys come from the record. All but plain ones are left to the pass that makes the body safe.
constexpr std::size_t kPlainKey = 64;

// The tag of the last pair is its key as it stands.
void putKey(TextWriter& body, std::string_view key, bool last) {
    if (last) {
        body.bytes(key);
        return;
    }
    char* out = body.reserve(key.size());
    for (std::size_t i = 0; i < key.size(); ++i)
        *out++ = tagCharacter(key[i], i == 0);
    body.commit(out);
}

void putPair(TextWriter& body, std::string_view key, std::string_view value, bool last) {
    const auto isMarkup = [](char c) { return c == '<' || c == '>'; };
    if (key.empty() || key.size() > kPlainKey || std::any_of(key.begin(), key.end(), isMarkup))
        body.expectMarkup();
    body.put("<");
    putKey(body, key, last);
    body.put(">").text(value).put("</");
    putKey(body, key, last);
    body.put(last ? ">\n" : "> ");
}

// Writes "key=value" pairs. A key is the word before a "=", unless the value of the pair before
// begins with that word: "a=b=c" is the value "b=c". A value runs to the next key, less one blank
// or less a comma and one blank, and to its first NUL; the last one to the end of the area with its
// NULs inside, and its key stands as it is. An area that begins with "=" or with blanks and "=" has
// an empty or a blank first key, which is dropped when its pair is the last one. Not inlined, so
// that its state stays in registers.
[[gnu::noinline]] void putPairs(TextWriter& body, std::string_view area) {
    bool pending = false; // a key without its value's end
    std::string_view key;
    std::size_t valueAt = 0;
    bool inWord = false;
    std::size_t word = 0; // the last one up to here: from ...
    std::size_t wordEnd = 0;
    for (std::size_t i = 0; i < area.size(); ++i) {
        if (isBlank(area[i])) {
            inWord = false;
            continue;
        }
        if (area[i] == '=' && (!pending || word > valueAt)) {
            if (pending) {
                const std::size_t end = area[word - 2] == ',' ? word - 2 : word - 1;
                putPair(body, key, untilNul(area.substr(valueAt, end - valueAt)), false);
            }
            if (wordEnd == 0) // nothing but blanks so far
                wordEnd = i == 0 ? 0 : 1;
            key = untilNul(area.substr(word, wordEnd - word));
            valueAt = i + 1;
            pending = true;
        }
        if (!inWord)
            word = i;
        inWord = true;
        wordEnd = i + 1;
    }
    if (pending && !key.empty() && !isBlank(key[0]))
        putPair(body, key, withoutTrailingNuls(area.substr(valueAt)), true);
}

// Writes the body and returns the summary, which is a part of the record.
std::string_view build(std::uint8_t kind, RecordView view, TextWriter& body) {
    using Block = LocatedRecord::Block;
    const LocatedRecord record(view, kind == kMessage ? Block::WhenLonger : Block::Always);
    const RecordView data = record.data();
    std::size_t textAt = 0;
    if (kind == kMessage) {
        write(body, kLayout<kManagementMessageRows>, data);
        textAt = kManagementMessageSize;
    } else if (kind == kObject) {
        const unsigned size = data.u16(kObjectSizeAt);
        writeObject(body, data.u8(kClassIdAt), data.subview(kObjectAt, size));
        write(body, kLayout<kObjectHeaderRows>, data);
        textAt = kObjectAt + size;
    }
    const std::string_view text = data.text(textAt);
    LocatedRecord::putText(body, text);
    if (kind == kDump) {
        record.putDump(body, text);
    } else if (kind == kKeyValue) {
        const LocatedRecord::Behind area = record.behind(text);
        if (area.holdsText)
            putPairs(body, area.data.bytes(0, static_cast<std::size_t>(area.left)));
    }
    if (record.severity() != 1)
        record.putTrailer(body);
    return summarize(text, 0);
}

// For callers with a buffer of their own.
String bodyOf(Kind kind, const EmpEvLogMsg_s* record, char* summary) {
    BodyWriter body(Texts::Safe);
    copyText(summary, build(kind, RecordView::of(record, 0), body));
    return body.string();
}

} // namespace

SMIS_Event::SMIS_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const TitledEvent* event = findEvent(kEvents, record->eventId);
    if (!event) {
        traceUnknown("SMIS_Event", 161, "Unknown SMIS EventID: ", record);
        assignAscii(summary_, "***UNKNOWN SMIS EventID***");
        assignHexBody(body_, record);
        return;
    }
    BodyWriter body(Texts::Safe);
    LineWriter summary(Texts::Safe);
    summary.text(
        build(event->kind, RecordView::of(record, static_cast<unsigned int>(length)), body));
    assignAscii(eventID_, event->title(record->eventType));
    summary.assignTo(summary_);
    body.assignTo(body_);
}

SMIS_Event::~SMIS_Event() = default;

void SMIS_copySummarized(char* dst, const char* src, int limit) {
    copyText(dst, summarize(src, limit));
}

void SMIS_fetch_event_location_information(const SMI_EVENT_LOCINFO_t* block, int* line,
                                           char* function, char* file) {
    unpackLocation(*block, *line, function, file);
}

String get_SMIS_text_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kText, record, summary);
}
String get_SMIS_dump_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kDump, record, summary);
}
String get_SMIS_mmsg_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kMessage, record, summary);
}
String get_SMIS_cmapMo_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kObject, record, summary);
}
String get_SMIS_keyvalue_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kKeyValue, record, summary);
}

} // namespace Pegasus
