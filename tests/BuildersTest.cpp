// Every builder that callers may use alone gives what the constructor makes of the same record.
#include "tests/RecordBuilder.h"

#include "decoders/datapath/IOMGR8P_Event.h"
#include "decoders/datapath/MIP8P_Event.h"
#include "decoders/datapath/VPI8P_Event.h"
#include "decoders/generic/DRIVEADMP_Event.h"
#include "decoders/generic/HACCMP_Event.h"
#include "decoders/generic/ICHAR_Event.h"
#include "decoders/generic/MSMMP_Event.h"
#include "decoders/generic/OB0_Event.h"
#include "decoders/generic/OB1_Event.h"
#include "decoders/generic/SNMPMP_Event.h"
#include "decoders/management/NETWORK_CONFIGMP_Event.h"
#include "decoders/management/SMIS_Event.h"
#include "decoders/management/STARTUPMP_Event.h"
#include "decoders/management/SYSTEM_CONFIGMP_Event.h"
#include "decoders/protocol/ES_ADAPTERMP_Event.h"
#include "decoders/protocol/ISCSIMP_Event.h"

#include <gtest/gtest.h>

#include <climits>

namespace Pegasus::test {
namespace {

// A record in memory, followed by zeros: builders that get no length read whole structures.
struct Wire {
    explicit Wire(const RecordBuilder& builder) : bytes(builder.record()) {
        bytes.resize(bytes.size() + 128);
    }
    const EmpEvLogMsg_s* record() const {
        return reinterpret_cast<const EmpEvLogMsg_s*>(bytes.data());
    }
    const char* payload(std::size_t at = 0) const {
        return reinterpret_cast<const char*>(bytes.data()) + sizeof(EmpEvLogMsg_s) + at;
    }
    std::vector<unsigned char> bytes;
};

// With a text of seven characters and its NUL at each multiple of eight.
RecordBuilder texts(unsigned source, unsigned code) {
    std::string payload;
    while (payload.size() < 2000)
        payload += std::string_view("a =b, c\0", 8);
    return RecordBuilder(source, code).severity(2).bytes(0, payload);
}

// ---- functions that return a body --------------------------------------------------------------

TEST(Builders, WithSummary) {
    // clang-format off
    const struct {
        unsigned source, code;
        String (*build)(const EmpEvLogMsg_s*, char*);
    } cases[] = {
        {23, 2000, get_SCC_text_event_body},              {23, 2005, get_SCC_dump_event_body},
        {23, 2010, get_SCC_shmem_event_body},             {23, 2011, get_SCC_lock_event_body},
        {23, 2013, get_SCC_mmsg_event_body},              {23, 2015, get_SCC_requestEvent_body},
        {23, 2016, get_SCC_responseEvent_body},           {23, 2017, get_SCC_timerEvent_body},
        {23, 2018, get_SCC_ddlm_event_body},              {23, 2019, get_SCC_cpm_event_body},
        {23, 2020, get_SCC_mpu_global_status_event_body}, {29, 2000, get_SMIS_text_event_body},
        {29, 2005, get_SMIS_dump_event_body},             {29, 2013, get_SMIS_mmsg_event_body},
        {29, 2018, get_SMIS_cmapMo_event_body},           {29, 2020, get_SMIS_keyvalue_event_body},
    };
    // clang-format on
    for (const auto& c : cases) {
        const RecordBuilder builder = texts(c.source, c.code);
        char summary[64] = "";
        EXPECT_EQ(utf8(c.build(Wire(builder).record(), summary)), builder.body()) << c.code;
        EXPECT_EQ(utf8(Avrel_Event::makeSafeString(summary, 0)), builder.summary()) << c.code;
    }
}

TEST(Builders, OfBodies) {
    const auto dump = [](const EmpEvLogMsg_s* record) {
        return get_NCS_dump_event_body(record, record->evStructLength);
    };
    // clang-format off
    const struct {
        unsigned source, code;
        String (*build)(const EmpEvLogMsg_s*);
    } cases[] = {
        {10, 1, get_VPI8P_MSG_STRING},                   {18, 1, get_STARTUPMP_MSG_STRING},
        {18, 2, get_STARTUPMP_MSG_MMCH},                 {18, 3, get_STARTUPMP_MSG_PARTIAL_MMSG},
        {18, 4, get_SignalInfo},                         {18, 100, get_Ravel_INVALID_STATE_MMSG},
        {18, 101, get_Ravel_stack_dump},                 {24, 1000, get_NCS_text_event_body},
        {24, 1003, dump},                                {24, 1021, get_NCS_mmsg_event_body},
        {24, 1026, get_NCS_responseEvent_body},          {24, 1040, get_NCS_link_event_body},
        {24, 1051, get_NCS_mac_stats_event_body},        {24, 1052, get_NCS_mac_stats_event_body},
        {24, 1053, get_NCS_ipTcpIscsi_stats_event_body}, {24, 1054, get_NCS_mgmt_stats_event_body},
        {24, 1055, get_NCS_tcpSys_stats_event_body},     {24, 1056, get_NCS_tcpConn_stats_event_body},
        {33, 1, get_ES_ADAPTERMP_event_body},            {33, 11, get_ES_ADAPTERMP_event_body},
    };
    // clang-format on
    const SuppressTrace quiet;
    for (const auto& c : cases) {
        const RecordBuilder builder = texts(c.source, c.code);
        EXPECT_EQ(utf8(c.build(Wire(builder).record())), builder.body()) << c.code;
    }
    const RecordBuilder text = texts(24, 1000);
    EXPECT_EQ(utf8(get_NCS_text_event_summary(Wire(text).record())), text.summary());
    for (auto build : {get_ICHAR_such_and_such_event_body, get_OB0_such_and_such_event_body,
                       get_OB1_such_and_such_event_body, get_HACCMP_such_and_such_event_body,
                       get_MSMMP_such_and_such_event_body, get_DRIVEADMP_such_and_such_event_body,
                       get_SNMPMP_such_and_such_event_body})
        EXPECT_EQ(utf8(build(Wire(text).record())), "Sample Body text");
}

// A length that holds no text leaves nothing to dump.
TEST(Builders, DumpOfTheLowestLength) {
    EXPECT_EQ(utf8(get_NCS_dump_event_body(Wire(RecordBuilder(24, 1003).text(0, "up")).record(),
                                           INT_MIN)),
              "<Text>up</Text> <Hex></Hex>\n");
}

// Kind 4 with names, kind 3 with a text request, kind 5 with a login request.
RecordBuilder iscsi(std::uint32_t kind) {
    return texts(22, 3).u32(0, kind << 16 | 9).u32s(56, {0x00050007, 0x03010002, 0x00040400});
}
template <class Data>
void compareIscsi(std::uint32_t kind, void (*build)(XmlString&, std::string&, const Data*)) {
    const Wire wire(iscsi(kind));
    XmlString body;
    std::string summary;
    build(body, summary, reinterpret_cast<const Data*>(wire.payload()));
    EXPECT_EQ(utf8(Avrel_Event::makeSafeString(body.c_str(), 0)), iscsi(kind).body()) << kind;
    EXPECT_EQ(summary, iscsi(kind).summary()) << kind;
}

TEST(Builders, OfIscsiData) {
    using Event = ISCSIMP_Event;
    const SuppressTrace quiet;
    compareIscsi(1, Event::build_basic_event);
    compareIscsi(2, Event::build_socket_event);
    compareIscsi(3, Event::build_param_event);
    compareIscsi(4, Event::build_login_event);
    compareIscsi(5, Event::build_request_event);
    compareIscsi(6, Event::build_message_event);
    XmlString body;
    std::string summary("kept");
    Event::build_unknown_event(body, summary, nullptr);
    EXPECT_EQ(body + summary, "kept");

    const Wire request(iscsi(5)), parameter(iscsi(3));
    const auto* login = reinterpret_cast<const ISCSI_LOGIN_REQUEST*>(request.payload(60));
    const auto* text = reinterpret_cast<const ISCSI_TEXT_REQUEST*>(parameter.payload(66));
    XmlString any, one;
    Event::build_bhs(any, login);
    Event::build_login_request_bhs(one, login);
    Event::build_bhs(any, text);
    Event::build_text_request_bhs(one, text);
    EXPECT_EQ(any, one);
    EXPECT_NE(any.find("Text Request"), any.npos);
}

// ---- data-path modules -------------------------------------------------------------------------

constexpr unsigned kAll = 400; // bytes of data in a record

// A record whose data area claims to have `length` bytes: counted ones, but for the name of a file
// at its start and four bytes of bad data of a bug-check.
RecordBuilder datapath(unsigned source, unsigned eventClass, unsigned code, unsigned length) {
    return RecordBuilder(source, 1)
        .u32s(0, {eventClass, code, 0, 77, length})
        .counted(20, kAll)
        .text(20, "f.c")
        .u32(20 + 24, 4);
}
// What follows the frame, or the text of the request.
std::string after(const std::string& body, std::string_view end) {
    const std::size_t at = body.find(end);
    return at == body.npos ? "no " + std::string(end) : body.substr(at + end.size());
}

// Of every class and code.
void compareIoManagerClasses(unsigned length) {
#define CLASS(NAME) &IOMGR8P_Event::get_IOMGR8P_##NAME##_class_event_body
    // clang-format off
    char* (IOMGR8P_Event::*const builders[])(const IOMGR_EVL*, char*) = {
        CLASS(manager), CLASS(rebuild), CLASS(reconfig), CLASS(bbscan),
        CLASS(xoe), CLASS(error_recovery), CLASS(metadata), CLASS(isurpproc),
        CLASS(drpproc), CLASS(bg), CLASS(database), CLASS(isr),
        CLASS(startup), CLASS(sv), CLASS(dlm), CLASS(crc_init),
        CLASS(parity), CLASS(parity_init), CLASS(parity_error), CLASS(parity_scan),
        CLASS(parity_rebuild), CLASS(micro_rebuild), CLASS(volume_init), CLASS(mmsg),
        CLASS(rcp), CLASS(fe), CLASS(carve), CLASS(bg_sys),
        CLASS(macro), CLASS(evl), CLASS(assert), CLASS(math),
        CLASS(device),
    };
    // clang-format on
#undef CLASS
    const SuppressTrace quiet;
    for (unsigned i = 0; i < std::size(builders); ++i)
        for (unsigned first : {1u, 501u, 1001u})
            for (unsigned code = first; code < first + 32; ++code) {
                const RecordBuilder builder = datapath(5, i + 1, code, length);
                const Wire wire(builder);
                const auto whole = builder.decode();
                IOMGR8P_Event made(nullptr, 0);
                char place = 'x';
                EXPECT_EQ(
                    (made.*builders[i])(reinterpret_cast<const IOMGR_EVL*>(wire.payload()), &place),
                    &place);
                EXPECT_EQ(utf8(made.getBody()),
                          after(utf8(whole->getBody()), "</Event_Line_Number>"))
                    << i + 1 << " " << code;
                EXPECT_EQ(utf8(made.getSummary()), utf8(whole->getSummary()));
            }
}
TEST(Builders, OfIoManagerClasses) {
    compareIoManagerClasses(kAll);
}
// Structures have their own size, whatever the data area claims.
TEST(Builders, OfIoManagerClassesWithoutLength) {
    compareIoManagerClasses(0);
}

TEST(Builders, OfIoManagerStructures) {
    using Build = void (*)(IOMGR8P_Event&, const char*);
#define STRUCTURE(NAME, TYPE)                                                                      \
    Build([](IOMGR8P_Event& to, const char* at) {                                                  \
        char place = 'x';                                                                          \
        EXPECT_EQ(to.get_IOMGR8P_##NAME##_event_body(                                              \
                      reinterpret_cast<const IOMGR_EVL_##TYPE*>(at), &place),                      \
                  &place);                                                                         \
    })
    const struct {
        unsigned eventClass, code, length;
        std::vector<std::pair<Build, unsigned>> parts; // with their places
    } cases[] = {
        {1, 1, kAll, {{STRUCTURE(lwsem, LWSEM), 0}}},
        {1, 26, kAll, {{STRUCTURE(drp, DRP), 0}}},
        {1, 32, kAll, {{STRUCTURE(msa, MSA_Q_EVENT), 0}}},
        {7, 2, kAll, {{STRUCTURE(mmsg, MMSG), 0}}},
        {7, 501, kAll, {{STRUCTURE(dib, DIB), 0}}},
        {14, 8, 92, {{STRUCTURE(isurp, ISURP), 0}, {STRUCTURE(sgt, SGT), 28}}},
        {20, 518, kAll, {{STRUCTURE(ndfe, NDFE), 0}}},
        {24, 1003, kAll, {{STRUCTURE(vbgt, VBGT), 0}}},
        {25, 28, 344, {{STRUCTURE(vt, VT), 0}, {STRUCTURE(ext, EXT), 264}}},
        {25, 29, kAll, {{STRUCTURE(rcd, RCD), 0}}},
        {25, 30, kAll, {{STRUCTURE(bcd, BCD), 0}}},
        {26, 509, kAll, {{STRUCTURE(fer, FER), 0}, {STRUCTURE(dlm, DLM), 24}}},
        {28, 31, kAll, {{STRUCTURE(rbt, RBT), 0}}},
    };
#undef STRUCTURE
    const SuppressTrace quiet;
    for (const auto& c : cases) {
        const RecordBuilder builder = datapath(5, c.eventClass, c.code, c.length);
        const Wire wire(builder);
        IOMGR8P_Event made(nullptr, 0);
        for (const auto& [build, at] : c.parts)
            build(made, wire.payload(20 + at));
        EXPECT_EQ(utf8(made.getBody()), after(builder.body(), "</Request_Type>"));
    }
}

void compareMipClasses(unsigned length) {
#define CLASS(NUMBER, NAME)                                                                        \
    { NUMBER, &MIP8P_Event::get_MIP8P_##NAME##_class_event_body }
    const struct {
        unsigned number;
        char* (MIP8P_Event::*build)(const MIP_EVL*, char*);
    } classes[] = {CLASS(1, management), CLASS(3, isr),    CLASS(4, startup), CLASS(6, mmsg),
                   CLASS(8, evl),        CLASS(9, assert), CLASS(12, dma),    CLASS(13, bugcheck)};
#undef CLASS
    const SuppressTrace quiet;
    std::string out(MIP8P_Event::kOutputRoom, '#');
    for (const auto& c : classes)
        for (unsigned first : {1u, 501u, 1001u})
            for (unsigned code = first; code < first + 32; ++code) {
                const RecordBuilder builder = datapath(7, c.number, code, length);
                const Wire wire(builder);
                const auto whole = builder.decode();
                MIP8P_Event made(nullptr, 0);
                char* end =
                    (made.*c.build)(reinterpret_cast<const MIP_EVL*>(wire.payload()), out.data());
                EXPECT_EQ(std::string(out.data(), end),
                          after(utf8(whole->getBody()), "</MIP_Event_Line_Num> "))
                    << c.number << " " << code;
                EXPECT_EQ(*end, '\0');
                EXPECT_EQ(utf8(made.getSummary()), utf8(whole->getSummary()));
                EXPECT_EQ(utf8(made.get_MIP8P_event_body(wire.record())), utf8(whole->getBody()));
            }
}
TEST(Builders, OfMipClasses) {
    compareMipClasses(kAll);
}
TEST(Builders, OfMipClassesWithoutLength) {
    compareMipClasses(0);
}

TEST(Builders, OfMipStructures) {
    using Build = char* (*)(const char*, char*);
    using Event = MIP8P_Event;
#define STRUCTURE(NAME, TYPE)                                                                      \
    [](const char* at, char* out) {                                                                \
        return Event::get_MIP8P_##NAME##_event_body(reinterpret_cast<const MIP_EVL_##TYPE*>(at),   \
                                                    out);                                          \
    }
    const struct {
        unsigned eventClass, code;
        Build build;
    } cases[] = {
        {1, 1, STRUCTURE(lwsem, LWSEM)},
        {1, 14, STRUCTURE(msa, MSA_Q_EVENT)},
        {6, 11, STRUCTURE(mmsg, MMSG)},
        {13, 21, Event::get_MIP8P_bugcheck_invalid_param_event_body},
        {13, 22, Event::get_MIP8P_bugcheck_fatal_msa_event_event_body},
        {13, 23, Event::get_MIP8P_bugcheck_fatal_irq_event_event_body},
    };
#undef STRUCTURE
    const SuppressTrace quiet;
    std::string out(Event::kOutputRoom, '#');
    for (const auto& c : cases) {
        const RecordBuilder builder = datapath(7, c.eventClass, c.code, kAll);
        const Wire wire(builder);
        char* end = c.build(wire.payload(20), out.data());
        EXPECT_EQ(std::string(out.data(), end), after(builder.body(), "</Request_Type> "));
        EXPECT_EQ(*end, '\0');
    }
}

} // namespace
} // namespace Pegasus::test
