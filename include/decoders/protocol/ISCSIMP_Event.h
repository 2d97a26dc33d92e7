// Decoder of the management processor's iSCSI target service: sockets, login negotiation, rejected
// parameters and requests, internal messages.
#pragma once

#include "event/Avrel_Event.h"
#include "event/XmlString.h"

#include <cstdint>

namespace Pegasus {

// The event data of each kind, which begin at record offset 152: bytes as they are in the record,
// all numbers big-endian. Each begins with the kind (u16), the reason code (u16) and the socket
// number (u32). The layouts are in the record reference.
struct BASIC_DATA {
    std::uint8_t bytes[8];
};
struct SOCKET_DATA {
    std::uint8_t bytes[24];
};
struct PARAM_DATA { // then texts; their five lengths are u16 at 56, 58, 60, 62 and 64
    std::uint8_t bytes[114];
};
struct LOGIN_DATA { // then two names; their lengths are u16 at 56 and 58
    std::uint8_t bytes[68];
};
struct REQUEST_DATA { // then two names; their lengths are u16 at 56 and 58
    std::uint8_t bytes[108];
};
struct MESSAGE_DATA {
    std::uint8_t bytes[72];
};

// Basic Header Segments of RFC 3720: any (10.2), Login Request (10.12), Text Request (10.10).
struct ISCSI_BHS {
    std::uint8_t bytes[48];
};
struct ISCSI_LOGIN_REQUEST : ISCSI_BHS {};
struct ISCSI_TEXT_REQUEST : ISCSI_BHS {};

struct IpAddr_t { // IPv4, network order
    std::uint8_t bytes[4];
};

// Title by event id. The body is a run of elements without anything between them, the summary the
// reason and, for sockets and logins, who is concerned. Unknown codes show as "Unknown (n)"; data
// of an unknown kind give an empty body and summary.
class MPUEVENT_EXPORT ISCSIMP_Event : public Avrel_Event {
public:
    ISCSIMP_Event(const EmpEvLogMsg_s* record, int length);
    ~ISCSIMP_Event() override;

    // Each appends the elements of the data to `body`, not made safe, and to `summary`. The memory
    // after the data holds all texts that their lengths announce.
    static void build_basic_event(XmlString& body, std::string& summary, const BASIC_DATA*);
    static void build_socket_event(XmlString& body, std::string& summary, const SOCKET_DATA*);
    static void build_param_event(XmlString& body, std::string& summary, const PARAM_DATA*);
    static void build_login_event(XmlString& body, std::string& summary, const LOGIN_DATA*);
    static void build_request_event(XmlString& body, std::string& summary, const REQUEST_DATA*);
    static void build_message_event(XmlString& body, std::string& summary, const MESSAGE_DATA*);
    // Appends nothing.
    static void build_unknown_event(XmlString& body, std::string& summary, const void*);

    // Appends the elements of a request; headers with other opcodes add nothing.
    static void build_bhs(XmlString& body, const ISCSI_BHS*);
    static void build_login_request_bhs(XmlString& body, const ISCSI_LOGIN_REQUEST*);
    static void build_text_request_bhs(XmlString& body, const ISCSI_TEXT_REQUEST*);

    static std::string get_ip_address(const IpAddr_t&); // "192.168.0.1"
    // The six bytes of an initiator session identifier as one number: "0x23d000001".
    static std::string get_isid(const unsigned char* isid);
    static std::string build_unknown_string(unsigned int code); // "Unknown (n)"
};

} // namespace Pegasus
