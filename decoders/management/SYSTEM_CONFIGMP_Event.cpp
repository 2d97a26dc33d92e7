#include "decoders/management/SYSTEM_CONFIGMP_Event.h"

#include "decoders/common/Unknown.h"
#include "decoders/management/Location.h"
#include "decoders/management/SYSTEM_CONFIGMP_Layouts.h"
#include "decoders/management/Titles.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::scc;

namespace {

enum class Shape : std::uint8_t {
    Text,          // a text alone
    TextDump,      // a text, then bytes
    TextStatus,    // a text, then the global status
    Structure,     // a structure alone
    StructureText, // a structure, then a text
};

// How the body and the summary of an event are made.
struct Builder {
    Shape shape;
    std::uint8_t textAt;        // StructureText: behind the structure
    const Layout* layout;       // of the structure
    std::string_view summary{}; // Structure: fixed
};

enum Kind : std::uint8_t {
    kText,
    kDump,
    kStatus,
    kSharedMemory,
    kPersistentMemory,
    kLock,
    kMessage,
    kRequest,
    kResponse,
    kTimer,
    kLockManager,
};
constexpr Builder kBuilders[] = {
    {Shape::Text, 0, nullptr},
    {Shape::TextDump, 0, nullptr},
    {Shape::TextStatus, 0, &kLayout<kStatusRows>},
    {Shape::Structure, 0, &kLayout<kSharedMemoryRows>, "Shared Memory Event"},
    {Shape::Structure, 0, &kLayout<kPersistentMemoryRows>, "Persistent Memory Event"},
    {Shape::StructureText, 28, &kLayout<kLockRows>},
    {Shape::StructureText, kManagementMessageSize, &kLayout<kManagementMessageRows>},
    {Shape::StructureText, 32, &kLayout<kRequestRows>},
    {Shape::StructureText, kResponseSize, &kLayout<kResponseRows>},
    {Shape::StructureText, 32, &kLayout<kTimerRows>},
    {Shape::StructureText, 40, &kLayout<kLockManagerRows>},
};

constexpr TitledEvent kEvents[] = {
    {2000, "Error Text", "Warning Text", "Text Information", kText},
    {2005, "Error Dump Data", "Warning Dump Data", "Dump Information", kDump},
    {2010, "Instantiation of SharedMemory Failed", "Instantiation of SharedMemory Failed",
     "Instantiation of SharedMemory Failed", kSharedMemory},
    {2011, "Locking Error", "Locking Warning", "Locking Information", kLock},
    {2012, "Instantiation of SharedMemory Failed", "Instantiation of SharedMemory Failed",
     "Instantiation of SharedMemory Failed", kSharedMemory},
    {2013, "MMSG Error", "MMSG Warning", "MMSG Information", kMessage},
    {2015, "Error in Request Event processing", "Warning in Request Event processing",
     "Request Event Information", kRequest},
    {2016, "Error in CEE Response Event processing", "Warning in CEE Response Event processing",
     "CEE Response Event Information", kResponse},
    {2017, "Error in CEE Timer Event processing", "Warning in CEE Timer Event processing",
     "CEE Timer Event Information", kTimer},
    {2018, "Error in DDLM internal processing", "Warning in DDLM internal processing",
     "DDLM Information", kLockManager},
    {2019, "Error in CPM internal processing", "Warning in CPM internal processing",
     "CPM Information", kPersistentMemory},
    {2020, "Error in MPU Global Status Event processing",
     "Warning in MPU Global Status Event processing", "MPU Global Status Information", kStatus},
};

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

// Writes the body and returns the summary, which is a part of the record or a fixed text.
std::string_view build(std::uint8_t kind, RecordView view, TextWriter& body) {
    const Builder& builder = kBuilders[kind];
    const LocatedRecord record(view, LocatedRecord::Block::WhenLonger);
    bool trailer = record.severity() != 1;
    std::string_view text;
    if (builder.shape == Shape::Structure || builder.shape == Shape::StructureText) {
        write(body, *builder.layout, record.data());
    } else {
        text = record.data().text(0);
        LocatedRecord::putText(body, text);
    }
    switch (builder.shape) {
    case Shape::Text:
    case Shape::Structure:
        break;
    case Shape::StructureText:
        text = record.data().text(builder.textAt);
        LocatedRecord::putText(body, text);
        break;
    case Shape::TextDump:
        record.putDump(body, text);
        break;
    case Shape::TextStatus: {
        const LocatedRecord::Behind status = record.behind(text);
        if (status.left >= kStatusSize) {
            write(body, *builder.layout, status.data);
        } else {
            body.put("<Incorrect_data_len>").integer(static_cast<std::uint32_t>(status.left));
            body.put("</Incorrect_data_len> <Expected_data_len>64</Expected_data_len> "
                     "<MPU_Global_Status_Event>No information available"
                     "</MPU_Global_Status_Event> ");
        }
        trailer = trailer && record.severity() != 0x65;
        break;
    }
    }
    if (trailer)
        record.putTrailer(body);
    return builder.shape == Shape::Structure ? builder.summary : summarize(text, 0);
}

// For callers with a buffer of their own.
String bodyOf(Kind kind, const EmpEvLogMsg_s* record, char* summary) {
    BodyWriter body(Texts::Safe);
    copyText(summary, build(kind, RecordView::of(record, 0), body));
    return body.string();
}

} // namespace

SYSTEM_CONFIGMP_Event::SYSTEM_CONFIGMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const TitledEvent* event = findEvent(kEvents, record->eventId);
    if (!event) {
        traceUnknown("SYSTEM_CONFIGMP_Event", 115, "Unknown EventID: 0x", record);
        assignAscii(summary_, "***UNKNOWN EventID***");
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

SYSTEM_CONFIGMP_Event::~SYSTEM_CONFIGMP_Event() = default;

void SCC_copySummarized(char* dst, const char* src, int limit) {
    copyText(dst, summarize(src, limit));
}

void SCC_fetch_event_location_information(const SCC_EVENT_LOCINFO_t* block, int* line,
                                          char* function, char* file) {
    unpackLocation(*block, *line, function, file);
}

String get_SCC_text_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kText, record, summary);
}
String get_SCC_dump_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kDump, record, summary);
}
String get_SCC_shmem_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kSharedMemory, record, summary);
}
String get_SCC_lock_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kLock, record, summary);
}
String get_SCC_mmsg_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kMessage, record, summary);
}
String get_SCC_requestEvent_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kRequest, record, summary);
}
String get_SCC_responseEvent_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kResponse, record, summary);
}
String get_SCC_timerEvent_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kTimer, record, summary);
}
String get_SCC_ddlm_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kLockManager, record, summary);
}
String get_SCC_cpm_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kPersistentMemory, record, summary);
}
String get_SCC_mpu_global_status_event_body(const EmpEvLogMsg_s* record, char* summary) {
    return bodyOf(kStatus, record, summary);
}

} // namespace Pegasus
