#include "decoders/datapath/VPI8P_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Numbered.h"
#include "decoders/common/Unknown.h"
#include "decoders/datapath/VPI8P_Layouts.h"
#include "event/Ascii.h"

namespace Pegasus {

using namespace mpu;

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kValueEnds = ", \t";
constexpr std::string_view kGroup = "Values";

constexpr const Events& events = kEventsOf<vpi::kEvents>;

std::string_view textOf(const Record& record) {
    return record.payload().text(0, record.payloadLength()).raw();
}

// `text` without the characters of `set` at its start.
std::string_view skip(std::string_view text, std::string_view set) {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

void putKey(TextWriter& out, std::string_view key) {
    char* next = out.reserve(key.size());
    for (std::size_t i = 0; i < key.size(); ++i)
        *next++ = tagCharacter(key[i], i == 0);
    out.commit(next);
}

void putPair(TextWriter& out, std::string_view key, std::string_view value) {
    // The closing tag of such a key would pass for that of the group; without a name it is no tag
    // at all. Only a look at the whole body can tell what becomes of it.
    if (key.starts_with(kGroup) || key.empty())
        out.expectMarkup();
    out.literal("<");
    putKey(out, key);
    out.literal(">").untrusted(Untrusted(value)).literal("</");
    putKey(out, key);
    out.literal("> ");
}

// Writes the pairs of a line; false when it has none.
bool putPairs(TextWriter& out, std::string_view line) {
    std::size_t equals = line.find('=');
    if (equals == std::string_view::npos)
        return false;
    out.open(kGroup);
    do {
        std::string_view key = skip(line.substr(0, equals), kBlanks);
        key = key.substr(0, key.find_last_not_of(kBlanks) + 1);
        line = skip(line.substr(equals + 1), kBlanks);
        const std::string_view value = line.substr(0, line.find_first_of(kValueEnds));
        putPair(out, key, value);
        line = skip(line.substr(value.size()), kValueEnds);
        equals = line.find('=');
    } while (equals != std::string_view::npos);
    out.close(kGroup);
    return true;
}

void putBody(TextWriter& body, std::string_view text) {
    unsigned int counter = 1;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (putPairs(body, line))
            continue;
        numbered(body, "<Text", counter, ">").untrusted(Untrusted(line));
        numbered(body, "</Text", counter, "> ");
        ++counter;
    }
}

} // namespace

void vpi::putFirstLine(Draft& draft, const Record& record, const RecordView&) {
    const std::string_view text = textOf(record);
    draft.summary.untrusted(Untrusted(text.substr(0, text.find('\n'))));
}

void vpi::putLines(Draft& draft, const Record& record, const RecordView&) {
    putBody(draft.body, textOf(record));
}

void vpi::decode(const Record& record, Draft& draft) {
    if (const Events::Entry* event = events.find(record.eventId()))
        return events.write(draft, *event, record, record.payload());
    decodeUnknown(record, draft,
                  {"VPI8P_Event", 115, "Unknown EventID: 0x", "Unhandled Event by VPI8P"});
}

VPI8P_Event::VPI8P_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, vpi::decode);
}

VPI8P_Event::~VPI8P_Event() = default;

String get_VPI8P_MSG_STRING(const EmpEvLogMsg_s* record) {
    BodyWriter body(Sanitize::Yes);
    putBody(body, textOf(Record(record)));
    return body.string();
}

} // namespace Pegasus
