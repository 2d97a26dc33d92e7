#include "decoders/protocol/ISCSIMP_Event.h"

#include "decoders/protocol/ISCSIMP_Layouts.h"
#include "event/StringFormat.h"

namespace Pegasus {

using namespace mpu;
using namespace mpu::iscsi;

namespace {

template <const auto& Rows>
void put(TextWriter& body, RecordView view) {
    write(body, kLayout<Rows, Style::Joined>, view);
}

void putName(TextWriter& body, std::string_view tag, const NameTable& names, unsigned code) {
    body.open(tag);
    names.put(body, code);
    body.close(tag);
}

void putText(TextWriter& body, std::string_view tag, std::string_view text) {
    body.element(tag, text, "");
}

void putAddress(TextWriter& out, RecordView address) {
    for (std::size_t i = 0; i < sizeof(IpAddr_t); ++i)
        out.put(i == 0 ? "" : ".").decimal(address.u8(i));
}

// The texts behind the fixed part of the data, in their order.
class TextRun {
public:
    TextRun(RecordView data, std::size_t at) : data_(data), at_(at) {}

    // The next one, whose length is at `lengthAt`.
    std::string_view next(std::size_t lengthAt) {
        const std::size_t length = data_.u16(lengthAt);
        const std::string_view text = data_.text(at_, length);
        at_ += length;
        return text;
    }

private:
    RecordView data_;
    std::size_t at_;
};

void putLoginRequest(TextWriter& body, RecordView header) {
    put<kLoginRequestFlagRows>(body, header);
    putName(body, "CSG", kStages, header.u8(1) >> 2 & 3u);
    putName(body, "NSG", kStages, header.u8(1) & 3u);
    put<kLoginRequestRows>(body, header);
}

void putHeader(TextWriter& body, RecordView header) {
    const unsigned opcode = header.u8(0) & kOpcodeMask;
    if (opcode == kLoginRequest)
        putLoginRequest(body, header);
    else if (opcode == kTextRequest)
        put<kTextRequestRows>(body, header);
}

void putReason(TextWriter& summary, RecordView data) {
    kReasons.put(summary, data.u16(2));
}

// The names and the header of a request.
void putRequest(TextWriter& body, RecordView data, TextRun& texts, std::size_t headerAt) {
    const std::string_view initiator = texts.next(kInitiatorNameLength);
    const std::string_view target = texts.next(kTargetNameLength);
    if (data.u16(kInitiatorNameLength) != 0 || data.u16(kTargetNameLength) != 0) {
        putText(body, "TargetName", target);
        putText(body, "InitiatorName", initiator);
    }
    putHeader(body, data.subview(headerAt, kHeaderSize));
}

void buildBasic(TextWriter& body, TextWriter& summary, RecordView data) {
    put<kReasonRows>(body, data);
    putReason(summary, data);
}

void buildSocket(TextWriter& body, TextWriter& summary, RecordView data) {
    buildBasic(body, summary, data);
    put<kSocketRows>(body, data);
    if (data.u16(2) == kSocketClosed) {
        put<kCloseRows>(body, data);
        kCloseReasons.put(summary.put(", "), data.u32(kCloseReason));
    }
    putAddress(summary.put(", Target "), data.subview(kTargetAddress));
    summary.put(":").decimal(data.u16(kTargetPort));
    putAddress(summary.put(", Initiator "), data.subview(kInitiatorAddress));
    summary.put(":").decimal(data.u16(kInitiatorPort));
    summary.put(", Socket ").decimal(data.u32(4));
}

void buildParameter(TextWriter& body, TextWriter& summary, RecordView data) {
    buildBasic(body, summary, data);
    TextRun texts(data, kParameterTexts);
    putRequest(body, data, texts, kParameterHeader);
    const std::string_view key = texts.next(kKeyLength);
    const std::string_view offer = texts.next(kOfferLength);
    const std::string_view answer = texts.next(kAnswerLength);
    if (data.u16(kKeyLength) != 0)
        putText(body, "Parameter", key);
    if (data.u16(kAnswerLength) != 0) {
        putText(body, "Value_Offered", offer);
        putText(body, "Value_Answered", answer);
    } else if (data.u16(kOfferLength) != 0) {
        putText(body, "Value", offer);
    }
}

void buildLogin(TextWriter& body, TextWriter& summary, RecordView data) {
    TextRun texts(data, kLoginTexts);
    put<kLoginSocketRows>(body, data);
    putText(body, "InitiatorName", texts.next(kInitiatorNameLength));
    put<kLoginInitiatorRows>(body, data);
    putText(body, "TargetName", texts.next(kTargetNameLength));
    put<kLoginTargetRows>(body, data);
    put<kLoginRows>(body, data);
    if (isChap(data.u8(47)))
        put<kMutualRows>(body, data);
    const std::uint32_t flags = data.u32(kLoginFlags.at);
    if (flags >> kOfMarkerFlag & 1)
        put<kOfMarkerRows>(body, data);
    if (flags >> kIfMarkerFlag & 1)
        put<kIfMarkerRows>(body, data);

    putReason(summary, data);
    summary.put(", TSIH ").decimal(data.u32(8)).put(", Target ID ").decimal(data.u16(66));
    summary.put(", Initiator ID ").decimal(data.u16(64));
    summary.put(", Socket ").decimal(data.u32(4));
}

void buildRequest(TextWriter& body, TextWriter& summary, RecordView data) {
    buildBasic(body, summary, data);
    TextRun texts(data, kRequestTexts);
    putRequest(body, data, texts, kRequestHeader);
}

void buildMessage(TextWriter& body, TextWriter& summary, RecordView data) {
    put<kMessageRows>(body, data);
    putReason(summary, data);
}

void build(TextWriter& body, TextWriter& summary, RecordView data) {
    switch (data.u16(0)) {
    case kBasic:
        return buildBasic(body, summary, data);
    case kSocket:
        return buildSocket(body, summary, data);
    case kParameter:
        return buildParameter(body, summary, data);
    case kLogin:
        return buildLogin(body, summary, data);
    case kRequest:
        return buildRequest(body, summary, data);
    case kMessage:
        return buildMessage(body, summary, data);
    }
}

// For callers with strings of their own.
void append(void (*builder)(TextWriter&, TextWriter&, RecordView), XmlString& body,
            std::string& summary, RecordView data) {
    BodyWriter elements;
    LineWriter line;
    builder(elements, line, data);
    body.append(elements.view());
    summary.append(line.view());
}

void append(void (*builder)(TextWriter&, RecordView), XmlString& body, const ISCSI_BHS* header) {
    BodyWriter elements;
    builder(elements, {header, sizeof *header});
    body.append(elements.view());
}

// The data and as many texts behind them, whose lengths stand in the data from 56 on.
template <class Data>
RecordView whole(const Data* data, unsigned texts = 0) {
    std::size_t size = sizeof *data;
    for (unsigned i = 0; i < texts; ++i)
        size += loadBig<std::uint16_t>(data->bytes + kInitiatorNameLength + 2 * i);
    return {data, size};
}

static_assert(sizeof(BASIC_DATA) == kHeadSize && sizeof(SOCKET_DATA) == kSocketSize &&
              sizeof(PARAM_DATA) == kParameterTexts && sizeof(LOGIN_DATA) == kLoginTexts &&
              sizeof(REQUEST_DATA) == kRequestTexts && sizeof(MESSAGE_DATA) == kMessageSize &&
              sizeof(ISCSI_BHS) == kHeaderSize);

} // namespace

ISCSIMP_Event::ISCSIMP_Event(const EmpEvLogMsg_s* record, int length)
    : Avrel_Event(record, static_cast<unsigned int>(length)) {
    if (!record)
        return;
    const RecordView view = RecordView::of(record, static_cast<unsigned int>(length));
    BodyWriter body(Texts::Safe);
    LineWriter line;
    kEvents.put(line, record->eventId);
    line.assignTo(eventID_);
    line.clear();
    build(body, line, view.subview(sizeof *record));
    body.assignTo(body_);
    line.assignTo(summary_);
}

ISCSIMP_Event::~ISCSIMP_Event() = default;

void ISCSIMP_Event::build_basic_event(XmlString& body, std::string& summary,
                                      const BASIC_DATA* data) {
    append(buildBasic, body, summary, whole(data));
}
void ISCSIMP_Event::build_socket_event(XmlString& body, std::string& summary,
                                       const SOCKET_DATA* data) {
    append(buildSocket, body, summary, whole(data));
}
void ISCSIMP_Event::build_param_event(XmlString& body, std::string& summary,
                                      const PARAM_DATA* data) {
    append(buildParameter, body, summary, whole(data, 5));
}
void ISCSIMP_Event::build_login_event(XmlString& body, std::string& summary,
                                      const LOGIN_DATA* data) {
    append(buildLogin, body, summary, whole(data, 2));
}
void ISCSIMP_Event::build_request_event(XmlString& body, std::string& summary,
                                        const REQUEST_DATA* data) {
    append(buildRequest, body, summary, whole(data, 2));
}
void ISCSIMP_Event::build_message_event(XmlString& body, std::string& summary,
                                        const MESSAGE_DATA* data) {
    append(buildMessage, body, summary, whole(data));
}
void ISCSIMP_Event::build_unknown_event(XmlString&, std::string&, const void*) {}

void ISCSIMP_Event::build_bhs(XmlString& body, const ISCSI_BHS* header) {
    append(putHeader, body, header);
}
void ISCSIMP_Event::build_login_request_bhs(XmlString& body, const ISCSI_LOGIN_REQUEST* header) {
    append(putLoginRequest, body, header);
}
void ISCSIMP_Event::build_text_request_bhs(XmlString& body, const ISCSI_TEXT_REQUEST* header) {
    append(put<kTextRequestRows>, body, header);
}

std::string ISCSIMP_Event::get_ip_address(const IpAddr_t& address) {
    LineWriter text;
    putAddress(text, {&address, sizeof address});
    return std::string(text.view());
}

std::string ISCSIMP_Event::get_isid(const unsigned char* isid) {
    return StringFormat::hex(loadBig<std::uint16_t>(isid), loadBig<std::uint32_t>(isid + 2), 6);
}

std::string ISCSIMP_Event::build_unknown_string(unsigned int code) {
    return "Unknown (" + StringFormat::decimal(code) + ")";
}

} // namespace Pegasus
