#include "decoders/protocol/ISCSIMP_Event.h"

#include "decoders/Decode.h"
#include "decoders/common/Numbered.h"
#include "decoders/common/Unknown.h"
#include "decoders/protocol/ISCSIMP_Layouts.h"
#include "event/StringFormat.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::iscsi;

namespace {

constexpr const Events& events = kEventsOf<kEvents>;

constexpr Row kAddressLine[] = {line("%u.%u.%u.%u", u8(0), u8(1), u8(2), u8(3))};

template <const auto& Rows>
void put(TextWriter& out, const RecordView& view) {
    write(out, kLayout<Rows, Style::Joined>, view);
}

void putElement(Draft& draft, std::string_view tag, Untrusted text) {
    draft.body.element(tag, text, "");
}

// The texts after the fixed part of the data, in their order; offsets are from the lengths.
class TextRun {
public:
    TextRun(const RecordView& data, unsigned at) : data_(data), at_(at - kLengthsAt) {}

    // The next one, whose length is at `lengthAt`.
    Untrusted next(std::size_t lengthAt) {
        const std::size_t length = data_.u16(lengthAt);
        const Untrusted text = data_.text(at_, length);
        at_ += length;
        return text;
    }

private:
    RecordView data_;
    std::size_t at_;
};

void putNames(Draft& draft, const RecordView& data, unsigned textsAt) {
    TextRun texts(data, textsAt);
    const Untrusted initiator = texts.next(kInitiatorLength);
    if (data.u32(kInitiatorLength) == 0) // both lengths
        return;
    putElement(draft, "TargetName", texts.next(kTargetLength));
    putElement(draft, "InitiatorName", initiator);
}

unsigned opcodeOf(const RecordView& header) {
    return header.u8(0) & kOpcodeMask;
}

// For callers with strings of their own. The pieces read the data alone, nothing of a record.
void append(Kind kind, XmlString& body, std::string& summary, const RecordView& data) {
    const EmpEvLogMsg_s none{};
    Draft draft(Sanitize::No);
    events.writeBody(draft, *events.find(kind), Record(&none), data);
    body.append(draft.body.view());
    summary.append(draft.summary.view());
}

template <const auto& Rows>
void append(XmlString& body, const ISCSI_BHS* header) {
    BodyWriter elements;
    put<Rows>(elements, {header, sizeof *header});
    body.append(elements.view());
}

// The data and as many texts after them, whose lengths are in the data from 56 on.
template <class Data>
RecordView whole(const Data* data, unsigned texts = 0) {
    std::size_t size = sizeof *data;
    for (unsigned i = 0; i < texts; ++i)
        size += loadBig<std::uint16_t>(data->bytes + kLengthsAt + 2 * i);
    return {data, size};
}

static_assert(sizeof(BASIC_DATA) == kHeadSize && sizeof(SOCKET_DATA) == kSocketSize &&
              sizeof(PARAM_DATA) == kParameterTexts && sizeof(LOGIN_DATA) == kLoginTexts &&
              sizeof(REQUEST_DATA) == kRequestTexts && sizeof(MESSAGE_DATA) == kMessageSize &&
              sizeof(ISCSI_BHS) == kHeaderSize);

} // namespace

char* iscsi::putCurrentStage(char* out, const std::uint8_t* at) {
    return kStages.put(out, *at >> 2 & 3u);
}

char* iscsi::putNextStage(char* out, const std::uint8_t* at) {
    return kStages.put(out, *at & 3u);
}

void iscsi::putClose(Draft& draft, const Record&, const RecordView& data) {
    if (data.u16(2) == kSocketClosed) {
        put<kCloseRows>(draft.body, data);
        kCloseReasons.put(draft.summary.literal(", "), data.u32(kCloseReason));
    }
    put<kPeersLine>(draft.summary, data);
}

void iscsi::putInitiatorName(Draft& draft, const Record&, const RecordView& data) {
    putElement(draft, "InitiatorName", TextRun(data, kLoginTexts).next(kInitiatorLength));
}

void iscsi::putTargetName(Draft& draft, const Record&, const RecordView& data) {
    TextRun texts(data, kLoginTexts);
    texts.next(kInitiatorLength);
    putElement(draft, "TargetName", texts.next(kTargetLength));
}

void iscsi::putLoginOptions(Draft& draft, const Record&, const RecordView& data) {
    const unsigned method = data.u8(47);
    if (method == 2 || method == 3) // CHAP
        put<kMutualRows>(draft.body, data);
    const std::uint32_t flags = data.u32(kLoginFlags.at);
    if (flags >> kOfMarkerFlag & 1)
        put<kOfMarkerRows>(draft.body, data);
    if (flags >> kIfMarkerFlag & 1)
        put<kIfMarkerRows>(draft.body, data);
}

void iscsi::putLoginRequest(Draft& draft, const Record&, const RecordView& data) {
    if (opcodeOf(data) == kLoginRequest)
        put<kLoginRequestRows>(draft.body, data);
}

void iscsi::putTextRequest(Draft& draft, const Record&, const RecordView& data) {
    if (opcodeOf(data) == kTextRequest)
        put<kTextRequestRows>(draft.body, data);
}

void iscsi::putRequestNames(Draft& draft, const Record&, const RecordView& data) {
    putNames(draft, data, kRequestTexts);
}

void iscsi::putParameterNames(Draft& draft, const Record&, const RecordView& data) {
    putNames(draft, data, kParameterTexts);
}

void iscsi::putParameterTexts(Draft& draft, const Record&, const RecordView& data) {
    TextRun texts(data, kParameterTexts);
    texts.next(kInitiatorLength);
    texts.next(kTargetLength);
    const Untrusted key = texts.next(kKeyLength);
    const Untrusted offer = texts.next(kOfferLength);
    if (data.u16(kKeyLength) != 0)
        putElement(draft, "Parameter", key);
    if (data.u16(kAnswerLength) != 0) {
        putElement(draft, "Value_Offered", offer);
        putElement(draft, "Value_Answered", texts.next(kAnswerLength));
    } else if (data.u16(kOfferLength) != 0) {
        putElement(draft, "Value", offer);
    }
}

void iscsi::decode(const Record& record, Draft& draft) {
    const RecordView data = record.payload();
    events.writeTitle(draft, record);
    const std::uint16_t kind = data.u16(0);
    if (const Events::Entry* event = events.find(kind))
        return events.writeBody(draft, *event, record, data);
    traceUnknown(record, "ISCSIMP_Event", 0, "Unknown payload kind: ", kind);
    numbered(draft.summary, "Unknown (", kind, ")");
}

ISCSIMP_Event::ISCSIMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    take(record, length, iscsi::decode);
}

ISCSIMP_Event::~ISCSIMP_Event() = default;

void ISCSIMP_Event::build_basic_event(XmlString& body, std::string& summary,
                                      const BASIC_DATA* data) {
    append(Kind::kBasic, body, summary, whole(data));
}
void ISCSIMP_Event::build_socket_event(XmlString& body, std::string& summary,
                                       const SOCKET_DATA* data) {
    append(Kind::kSocket, body, summary, whole(data));
}
void ISCSIMP_Event::build_param_event(XmlString& body, std::string& summary,
                                      const PARAM_DATA* data) {
    append(Kind::kParameter, body, summary, whole(data, 5));
}
void ISCSIMP_Event::build_login_event(XmlString& body, std::string& summary,
                                      const LOGIN_DATA* data) {
    append(Kind::kLogin, body, summary, whole(data, 2));
}
void ISCSIMP_Event::build_request_event(XmlString& body, std::string& summary,
                                        const REQUEST_DATA* data) {
    append(Kind::kRequest, body, summary, whole(data, 2));
}
void ISCSIMP_Event::build_message_event(XmlString& body, std::string& summary,
                                        const MESSAGE_DATA* data) {
    append(Kind::kMessage, body, summary, whole(data));
}
void ISCSIMP_Event::build_unknown_event(XmlString&, std::string&, const void*) {}

void ISCSIMP_Event::build_bhs(XmlString& body, const ISCSI_BHS* header) {
    const unsigned opcode = opcodeOf({header, sizeof *header});
    if (opcode == kLoginRequest)
        append<kLoginRequestRows>(body, header);
    else if (opcode == kTextRequest)
        append<kTextRequestRows>(body, header);
}
void ISCSIMP_Event::build_login_request_bhs(XmlString& body, const ISCSI_LOGIN_REQUEST* header) {
    append<kLoginRequestRows>(body, header);
}
void ISCSIMP_Event::build_text_request_bhs(XmlString& body, const ISCSI_TEXT_REQUEST* header) {
    append<kTextRequestRows>(body, header);
}

std::string ISCSIMP_Event::get_ip_address(const IpAddr_t& address) {
    LineWriter text;
    put<kAddressLine>(text, {&address, sizeof address});
    return std::string(text.view());
}

std::string ISCSIMP_Event::get_isid(const unsigned char* isid) {
    return StringFormat::hex(loadBig<std::uint16_t>(isid), loadBig<std::uint32_t>(isid + 2), 6);
}

std::string ISCSIMP_Event::build_unknown_string(unsigned int code) {
    return "Unknown (" + StringFormat::decimal(code) + ")";
}

} // namespace Pegasus
