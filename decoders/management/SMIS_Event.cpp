#include "decoders/management/SMIS_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/management/SMIS_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::smis;

namespace {

constexpr const Events& events = kEventsOf<kEvents>;

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

// The tag of the last pair is its key as it is.
void putKey(TextWriter& body, std::string_view key, bool last) {
    if (last) {
        body.raw(Untrusted(key));
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
    body.literal("<");
    putKey(body, key, last);
    body.literal(">").untrusted(Untrusted(value)).literal("</");
    putKey(body, key, last);
    body.literal(last ? ">\n" : "> ");
}

// Writes "key=value" pairs. A key is the word before a "=", unless the value of the pair before
// begins with that word: "a=b=c" is the value "b=c". A value runs to the next key, less one blank
// or less a comma and one blank, and to its first NUL; the last one to the end of the area with its
// NULs inside, and its key is written verbatim. An area that begins with "=" or with blanks and "="
// has an empty or a blank first key, which is dropped when its pair is the last one. Not inlined,
// so that its state stays in registers.
[[gnu::noinline]] void writePairs(TextWriter& body, std::string_view area) {
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

LocatedRecord located(const Record& record, unsigned int code = 0) {
    using Block = LocatedRecord::Block;
    return {record.view(), code == kMessage ? Block::WhenLonger : Block::Always};
}

Untrusted textAfterObject(const RecordView& data) {
    return data.text(kObjectAt + std::size_t{data.u16(kObjectSizeAt)});
}

// For callers with a buffer of their own: the body of `record` as an event with the code has it.
String bodyOf(unsigned int code, const EmpEvLogMsg_s* bytes, char* summary) {
    const Record record(bytes);
    const RecordView data = located(record, code).data();
    Draft draft;
    events.writeBody(draft, *events.find(code, data.u8(kClassIdAt)), record, data);
    copyText(summary, draft.summary.view());
    return draft.body.string();
}

} // namespace

void smis::putObject(Draft& draft, const Record& record, const RecordView&) {
    const RecordView data = located(record).data();
    writeObject(draft.body, data.u8(kClassIdAt), data.subview(kObjectAt, data.u16(kObjectSizeAt)));
}

void smis::putObjectText(Draft& draft, const Record&, const RecordView& data) {
    LocatedRecord::putText(draft.body, textAfterObject(data));
}

void smis::putObjectSentence(Draft& draft, const Record&, const RecordView& data) {
    draft.summary.untrusted(Untrusted(summarize(textAfterObject(data).raw(), 0)));
}

void smis::putSentence(Draft& draft, const Record&, const RecordView& data) {
    draft.summary.untrusted(Untrusted(summarize(data.text(0).raw(), 0)));
}

void smis::putDump(Draft& draft, const Record& record, const RecordView& data) {
    located(record).putDump(draft.body, data.text(0));
}

void smis::putPairs(Draft& draft, const Record& record, const RecordView& data) {
    const LocatedRecord::Rest area = located(record).after(data.text(0));
    if (area.holdsText)
        writePairs(draft.body, area.data.bytes(0, static_cast<std::size_t>(area.left)).raw());
}

void smis::putTrailer(Draft& draft, const Record& record, const RecordView&) {
    if (record.severity() != 1)
        located(record).putTrailer(draft.body);
}

void smis::putMessageTrailer(Draft& draft, const Record& record, const RecordView&) {
    if (record.severity() != 1)
        located(record, kMessage).putTrailer(draft.body);
}

void smis::decode(const Record& record, Draft& draft) {
    const RecordView data = located(record, record.eventId()).data();
    const Events::Entry* event = events.find(record.eventId(), data.u8(kClassIdAt));
    if (!event)
        return decodeUnknown(
            record, draft,
            {"SMIS_Event", 161, "Unknown SMIS EventID: ", "***UNKNOWN SMIS EventID***"});
    draft.summary.setSanitize(Sanitize::Yes);
    events.write(draft, *event, record, data);
}

SMIS_Event::SMIS_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, smis::decode);
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
    return bodyOf(2000, record, summary);
}
String get_SMIS_dump_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2005, record, summary);
}
String get_SMIS_mmsg_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kMessage, record, summary);
}
String get_SMIS_cmapMo_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2018, record, summary);
}
String get_SMIS_keyvalue_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2020, record, summary);
}

} // namespace Pegasus
