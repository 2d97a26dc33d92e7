// Decoder of the management processor's network-configuration service: port, link and protocol
// statistics, link-aggregation status, management messages.
#pragma once

#include "event/Avrel_Event.h"

namespace Pegasus {

// Title and summary by event code. Bodies are flat runs of elements with a blank after each. They
// and the summaries hold texts as the record has them; only the management port's body passes
// makeSafeString. An unknown code gives the summary "***UNKNOWN EventID***" and a hexadecimal dump.
class MPUEVENT_EXPORT NETWORK_CONFIGMP_Event : public Avrel_Event {
public:
    NETWORK_CONFIGMP_Event(const EmpEvLogMsg_s* record, int length);
    ~NETWORK_CONFIGMP_Event() override;
};

// Each returns the body of a record. The memory behind `record` holds 152 + evStructLength bytes.
MPUEVENT_EXPORT String get_NCS_tcpConn_stats_event_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_tcpSys_stats_event_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_mgmt_stats_event_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_ipTcpIscsi_stats_event_body(const EmpEvLogMsg_s* record);
// The event code tells whether the object is a port, a link-aggregation port or any other one.
MPUEVENT_EXPORT String get_NCS_mac_stats_event_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_link_event_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_responseEvent_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_mmsg_event_body(const EmpEvLogMsg_s* record);
MPUEVENT_EXPORT String get_NCS_text_event_body(const EmpEvLogMsg_s* record);
// `length` counts payload bytes; the dump ends with the record in any case.
MPUEVENT_EXPORT String get_NCS_dump_event_body(const EmpEvLogMsg_s* record, int length);

// The text at the start of the payload, at most 255 characters.
MPUEVENT_EXPORT String get_NCS_text_event_summary(const EmpEvLogMsg_s* record);

} // namespace Pegasus
