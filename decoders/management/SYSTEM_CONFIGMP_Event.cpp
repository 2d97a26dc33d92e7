#include "decoders/management/SYSTEM_CONFIGMP_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/management/SYSTEM_CONFIGMP_Layouts.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::scc;

namespace {

constexpr const Events& events = kEventsOf<kEvents>;

constexpr std::size_t kLongestSummary = 63;

// The first sentence of `text`.
std::string_view summarize(std::string_view text, int limit) {
    bool seen = false; // a blank, the last of them at `blank`
    std::size_t blank = 0;
    for (std::size_t i = 0;; ++i) {
        if (i == kLongestSummary)
            return text.substr(0, seen ? blank : kLongestSummary);
        if (limit > 0 && i > static_cast<std::size_t>(limit))
            return text.substr(0, seen ? blank : static_cast<std::size_t>(limit));
        const char c = i < text.size() ? text[i] : '\0';
        if (c == '\0' || c == ';')
            return text.substr(0, i);
        if (c == ':' && i > 1 && text[i - 2] == '(' && text[i - 1] == ')')
            return text.substr(0, i);
        if (isBlank(c)) {
            if (i > 0 && text[i - 1] == '.')
                return text.substr(0, i);
            seen = true;
            blank = i;
        }
    }
}

LocatedRecord located(const Record& record) {
    return {record.view(), LocatedRecord::Block::WhenLonger};
}

// For callers with a buffer of their own: the body of `record` as an event with the code has it.
String bodyOf(unsigned int code, const EmpEvLogMsg_s* bytes, char* summary) {
    const Record record(bytes);
    Draft draft;
    events.writeBody(draft, *events.find(code), record, located(record).data());
    copyText(summary, draft.summary.view());
    return draft.body.string();
}

} // namespace

void scc::putSentence(Draft& draft, const Record&, const RecordView& data) {
    draft.summary.untrusted(Untrusted(summarize(data.text(0).raw(), 0)));
}

void scc::putDump(Draft& draft, const Record& record, const RecordView& data) {
    located(record).putDump(draft.body, data.text(0));
}

void scc::putStatus(Draft& draft, const Record& record, const RecordView&) {
    const LocatedRecord all = located(record);
    const LocatedRecord::Rest status = all.after(all.data().text(0));
    if (status.left >= kStatusSize)
        return write(draft.body, kLayout<kStatusRows>, status.data);
    draft.body.literal("<Incorrect_data_len>").integer(static_cast<std::uint32_t>(status.left));
    draft.body.literal(
        "</Incorrect_data_len> <Expected_data_len>64</Expected_data_len> "
        "<MPU_Global_Status_Event>No information available</MPU_Global_Status_Event> ");
}

void scc::putTrailer(Draft& draft, const Record& record, const RecordView&) {
    if (record.severity() != 1)
        located(record).putTrailer(draft.body);
}

void scc::putStatusTrailer(Draft& draft, const Record& record, const RecordView& data) {
    if (record.severity() != 101)
        putTrailer(draft, record, data);
}

void scc::decode(const Record& record, Draft& draft) {
    const Events::Entry* event = events.find(record.eventId());
    if (!event)
        return decodeUnknown(
            record, draft,
            {"SYSTEM_CONFIGMP_Event", 115, "Unknown EventID: 0x", "***UNKNOWN EventID***"});
    draft.summary.setSanitize(Sanitize::Yes);
    events.write(draft, *event, record, located(record).data());
}

SYSTEM_CONFIGMP_Event::SYSTEM_CONFIGMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, scc::decode);
}

SYSTEM_CONFIGMP_Event::~SYSTEM_CONFIGMP_Event() = default;

void SCC_copySummarized(char* dst, const char* src, int limit) {
    copyText(dst, summarize(src, limit));
}

void SCC_fetch_event_location_information(const SCC_EVENT_LOCINFO_t* block, int* line,
                                          char* function, char* file) {
    unpackLocation(*block, *line, function, file);
}

String get_SCC_text_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2000, record, summary);
}
String get_SCC_dump_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2005, record, summary);
}
String get_SCC_shmem_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2010, record, summary);
}
String get_SCC_lock_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2011, record, summary);
}
String get_SCC_mmsg_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2013, record, summary);
}
String get_SCC_requestEvent_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2015, record, summary);
}
String get_SCC_responseEvent_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2016, record, summary);
}
String get_SCC_timerEvent_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2017, record, summary);
}
String get_SCC_ddlm_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2018, record, summary);
}
String get_SCC_cpm_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2019, record, summary);
}
String get_SCC_mpu_global_status_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(2020, record, summary);
}

} // namespace Pegasus
