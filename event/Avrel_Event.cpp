#include "event/Avrel_Event.h"

#include "event/Ascii.h"
#include "event/Draft.h"
#include "event/HeaderNames.h"
#include "event/Names.h"
#include "event/Record.h"
#include "event/SafeText.h"
#include "platform/trace/ProviderTraceServices.h"

namespace Pegasus {

using namespace mpu;

namespace {

constexpr const char* kTraceSource = "Avrel_Event";

constexpr std::string_view kSourceTexts[] = {
    "iSCSI 1",     "iSCSI 2", "SCSI",     "Cache 1", "Cache 2",   "I/O Mgr", "Dev Mgr",
    "MIP",         "PieMan",  "AWR",      "VPI",     "MIP Local", "iChar",   "OB0",
    "OB1",         "HACC",    "MSM",      "RCP",     "Startup",   "DDLM",    "Vol Mgr",
    "Drive Admin", "ICS",     "SCC",      "NCS",     "AIM",       "ESM",     "EMP",
    "SNMP",        "SMIS",    "SMIS IND", "iSNS",    "",          "ESA",
};
constexpr NameTable kSources = names<kSourceTexts>();

constexpr std::string_view kCategoryTexts[] = {
    "",      "System",  "Management", "Environmental", "Device", "Volume", "Device", "SCSI",
    "iSCSI", "Network", "Hardware",   "I/O",           "Cache",  "iSNS",   "Task",
};
constexpr NameTable kCategories = names<kCategoryTexts>();

struct EventType {
    unsigned char value;
    char text[18];
};
constexpr EventType kEventTypes[] = {
    {1, "Informational"},       {2, "Warning"},       {3, "Error"},
    {101, "Eng Informational"}, {102, "Eng Warning"}, {103, "Eng Error"},
};

const EventType* findEventType(unsigned int value) {
    for (const EventType& type : kEventTypes)
        if (type.value == value)
            return &type;
    return nullptr;
}

[[gnu::cold]] void traceUnknown(int line, const char* function, const char* what,
                                unsigned int value) {
    if (ProviderTraceServices::ptsGetTraceSuppressForPid() != 0)
        return;
    LineWriter number;
    number.decimal(value);
    ProviderTraceServices::ptsTrace(
        kTraceSource, line,
        {"Avrel_Event::", function, "() has no case for ", what, " # ", number.view()});
}

// The name of a code; one without a name is traced and is shown as its number.
void assignName(String& to, const NameTable& table, unsigned int value, int line,
                const char* function, const char* what) {
    if (const std::string_view name = table.find(value); !name.empty()) {
        assignAscii(to, name);
        return;
    }
    traceUnknown(line, function, what, value);
    LineWriter number;
    number.integer(value).assignTo(to);
}

void assignCategory(String& to, unsigned int value) {
    assignName(to, kCategories, value, 303, "categoryFromEmpValue", "category");
}

void assignSource(String& to, unsigned int value) {
    assignName(to, kSources, value, 176, "sourceFromEmpValue", "source");
}

std::size_t byteCount(long count) {
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

} // namespace

std::string_view mpu::sourceName(std::uint8_t code) {
    return kSources.find(code);
}

std::string_view mpu::categoryName(std::uint8_t code) {
    return kCategories.find(code);
}

std::string_view mpu::eventTypeName(std::uint8_t code) {
    const EventType* type = findEventType(code);
    return type ? type->text : "";
}

Avrel_Event::Avrel_Event(const EmpEvLogMsg_s* record, unsigned int length) {
    if (!record)
        return;
    const RecordView header(record, sizeof *record);
    assignText(enclosureSerialNumber_, header.text(0, sizeof record->enclosureSerialNumber).raw());
    assignText(controllerSerialNumber_, header
                                            .text(offsetof(EmpEvLogMsg_s, controllerSerialNumber),
                                                  sizeof record->controllerSerialNumber)
                                            .raw());
    controllerSlotID_ = record->slotId;
    eventLogInstanceNumber_ = record->logInstance;
    sequenceID_ = record->sequenceId;
    timestamp_ = record->timestamp;
    assignSource(source_, record->source);
    assignCategory(category_, record->category);
    eventType_ = eventTypeFromEmpValue(record->eventType);
    char number[kDecimalRoom];
    assignAscii(eventID_, {number, putDecimal(number, std::uint32_t{record->eventId})});

    const unsigned int claimed = record->evStructLength;
    const std::uint32_t carried =
        length == 0 || length > 0xFFFF ? sizeof *record + claimed : length;
    constexpr std::uint32_t kHeader = sizeof *record;
    basis_.missingBytes = carried < kHeader ? kHeader - carried : 0;
    basis_.unreadBytes = carried > kHeader ? carried - kHeader : 0;
    if (sizeof *record + claimed != length &&
        ProviderTraceServices::ptsGetTraceSuppressForPid() == 0) {
        LineWriter line;
        line.literal("Avrel_Event constructed with len=").decimal(length);
        line.literal(", but evStructLength=").decimal(claimed);
        ProviderTraceServices::ptsTrace(kTraceSource, 155, {line.view()});
        ProviderTraceServices::ptsTrace(kTraceSource, 156, {"Contents of Event data is:"});
        const CString contents = Avrel_Event::str().getCString();
        ProviderTraceServices::ptsTrace(kTraceSource, 157, {static_cast<const char*>(contents)});
    }
}

Avrel_Event::~Avrel_Event() = default;

void Avrel_Event::take(const EmpEvLogMsg_s* record, int length, DecodeFunction decode) {
    if (!record)
        return;
    Draft draft;
    decode(Record(record, static_cast<unsigned int>(length), &draft.footprint), draft);
    take(draft);
}

void Avrel_Event::take(const Draft& draft) {
    if (draft.isTitled || !draft.title.view().empty())
        draft.title.assignTo(eventID_);
    draft.summary.assignTo(summary_);
    draft.body.assignTo(body_);
    basis_ = draft.footprint.basis();
}

String Avrel_Event::getEnclosureSerialNumber() const {
    return enclosureSerialNumber_;
}
void Avrel_Event::setEnclosureSerialNumber(String text) {
    enclosureSerialNumber_ = text;
}
unsigned int Avrel_Event::getControllerSlotID() const {
    return controllerSlotID_;
}
void Avrel_Event::setControllerSlotID(unsigned int value) {
    controllerSlotID_ = value;
}
String Avrel_Event::getControllerSerialNumber() const {
    return controllerSerialNumber_;
}
void Avrel_Event::setControllerSerialNumber(String text) {
    controllerSerialNumber_ = text;
}
unsigned int Avrel_Event::getEventLogInstanceNumber() const {
    return eventLogInstanceNumber_;
}
void Avrel_Event::setEventLogInstanceNumber(unsigned int value) {
    eventLogInstanceNumber_ = value;
}
unsigned int Avrel_Event::getSequenceID() const {
    return sequenceID_;
}
void Avrel_Event::setSequenceID(unsigned int value) {
    sequenceID_ = value;
}
unsigned int Avrel_Event::getTimestamp() const {
    return timestamp_;
}
void Avrel_Event::setTimestamp(unsigned int value) {
    timestamp_ = value;
}
String Avrel_Event::getSource() const {
    return source_;
}
void Avrel_Event::setSource(String text) {
    source_ = text;
}
String Avrel_Event::getCategory() const {
    return category_;
}
void Avrel_Event::setCategory(String text) {
    category_ = text;
}
unsigned int Avrel_Event::getEventType() const {
    return eventType_;
}
void Avrel_Event::setEventType(unsigned int value) {
    eventType_ = value;
}
String Avrel_Event::getEventID() const {
    return eventID_;
}
void Avrel_Event::setEventID(String text) {
    eventID_ = text;
}
String Avrel_Event::getSummary() const {
    return summary_;
}
void Avrel_Event::setSummary(String text) {
    summary_ = text;
}
String Avrel_Event::getBody() const {
    return body_;
}
void Avrel_Event::setBody(String text) {
    body_ = text;
}

String Avrel_Event::getEventType() {
    const EventType* type = findEventType(eventType_);
    return type ? type->text : "Unknown";
}

[[gnu::cold]] String Avrel_Event::str() const {
    LineWriter numbers;
    numbers.literal("', Slot: ").integer(controllerSlotID_);
    numbers.literal(", Log Instance # ").integer(eventLogInstanceNumber_);
    numbers.literal(", Sequence ID=").integer(sequenceID_);
    numbers.literal(", Timestamp=").integer(timestamp_).literal(", Source: '");
    LineWriter type;
    type.literal("', EventType=").integer(eventType_).literal(", EventID: '");

    String line("Enclosure Ser#: '");
    line.append(enclosureSerialNumber_).append("', Card Ser#: '").append(controllerSerialNumber_);
    line.append(numbers.string()).append(source_).append("', Category: '").append(category_);
    line.append(type.string()).append(eventID_).append("', Summary: '").append(summary_);
    line.append("', Body: '").append(body_).append("'");
    return line;
}

unsigned int Avrel_Event::eventTypeFromEmpValue(unsigned int value) const {
    if (findEventType(value))
        return value;
    traceUnknown(367, "eventTypeFromEmpValue", "Event Type", value);
    return 0;
}

String Avrel_Event::categoryFromEmpValue(unsigned int value) const {
    String name;
    assignCategory(name, value);
    return name;
}

String Avrel_Event::sourceFromEmpValue(unsigned int value) const {
    String name;
    assignSource(name, value);
    return name;
}

void Avrel_Event::hexified(char* out, const char* bytes, long count) {
    *putHexBytes(out, {bytes, byteCount(count)}) = '\0';
}

String Avrel_Event::hexifiedString(const char* bytes, long count) {
    BodyWriter out;
    return out.hexBytes({bytes, byteCount(count)}).string();
}

String Avrel_Event::hexifiedStringForBody(const char* bytes, long count) {
    BodyWriter out;
    putDump(out, {bytes, byteCount(count)});
    return out.string();
}

String Avrel_Event::xmlize(const char* tag, const char* value) {
    BodyWriter out;
    return out.element(tag, Untrusted(value), "").string();
}

String Avrel_Event::xmlizeString(const char* tag, String value) {
    const String name = toString(tag);
    String element("<");
    element.append(name).append(">").append(value).append("</").append(name).append(">");
    return element;
}

void Avrel_Event::makeSafeKeyname(char* text, int count) {
    const std::size_t length = count == 0 ? std::strlen(text) : byteCount(count);
    char* kept = text;
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (isBlank(c))
            *kept++ = '_';
        else if (isLetter(c) || isDigit(c) || c == '_')
            *kept++ = c;
    }
    if (count != 0 && kept < text + length)
        *kept = '\0';
}

String Avrel_Event::makeSafeString(const char* text, int count) {
    if (!text || count < 0)
        return String();
    StackWriter<1024> out; // may be beside that of a decoder
    putSafe(out, count == 0 ? std::string_view(text)
                            : std::string_view(text, static_cast<std::size_t>(count)));
    return toString(out.view());
}

} // namespace Pegasus
