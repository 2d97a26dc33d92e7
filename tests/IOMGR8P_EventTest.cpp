#include "tests/RecordBuilder.h"

#include "decoders/datapath/IOMGR8P_Event.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>

namespace Pegasus::test {
namespace {

constexpr std::uint8_t kSource = 5;
constexpr std::size_t kData = 20; // of the payload

RecordBuilder event(std::uint32_t eventClass, std::uint32_t code, std::uint32_t length = 0) {
    RecordBuilder record(kSource, 1);
    return record.u32(0, eventClass).u32(4, code).u32(12, 77).u32(16, length);
}

// The same with a data area of `length` bytes, each of which is the low byte of its offset: the
// word at 8 is 0x08090A0B.
RecordBuilder counted(std::uint32_t eventClass, std::uint32_t code, std::uint32_t length) {
    return event(eventClass, code, length).counted(kData, length);
}

// "A=1 B=2": <A>1</A><B>2</B>; "~" stands for a blank.
std::string entries(std::string_view list) {
    std::string out;
    while (!list.empty()) {
        std::string_view one = list.substr(0, list.find(' '));
        list.remove_prefix(std::min(one.size() + 1, list.size()));
        const std::string tag(one.substr(0, one.find('=')));
        std::string value(one.substr(tag.size() + 1));
        std::replace(value.begin(), value.end(), '~', ' ');
        out += "<" + tag + ">" + value + "</" + tag + ">";
    }
    return out;
}

// What follows the frame's three entries and Request_Type.
std::string dumpOf(const RecordBuilder& record) {
    const std::string body = utf8(record.decode()->getBody());
    const std::string_view last = "</Request_Type>";
    const std::size_t at = body.find(last);
    return at == std::string::npos ? "no Request_Type" : body.substr(at + last.size());
}

std::size_t count(std::string_view text, std::string_view part) {
    std::size_t n = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

TEST(IoManager, FrameAndText) {
    CaptureTrace trace;
    const auto decoded = event(32, 0, 0x1A).decode();
    EXPECT_EQ(utf8(decoded->getEventID()), "Unknown Event");
    EXPECT_EQ(utf8(decoded->getSummary()), "MATH Error");
    EXPECT_EQ(utf8(decoded->getBody()), "<Event_Type>32</Event_Type><Event_Number>0</Event_Number>"
                                        "<Event_Line_Number>77</Event_Line_Number>"
                                        "<Request_Type>MATH Error</Request_Type>");
    EXPECT_THAT(trace.lines(), testing::ElementsAre(testing::StartsWith("IOMGR8P_Event:")));
    EXPECT_THAT(trace.lines()[0], testing::EndsWith(":----: IOMGR_Event: Length=0x1a"));
    EXPECT_THAT(utf8(event(0x80000000u, 1).decode()->getBody()),
                testing::StartsWith("<Event_Type>-2147483648</Event_Type>"));
}

TEST(IoManager, OtherEventIdentifiers) {
    CaptureTrace trace;
    const auto decoded = RecordBuilder(kSource, 2).bytes(0, "\x01\xAB").decode();
    EXPECT_EQ(utf8(decoded->getEventID()), "2");
    EXPECT_EQ(utf8(decoded->getSummary()), "Unhandled Event by IOMGR8P");
    EXPECT_EQ(utf8(decoded->getBody()), "<Hex>01AB</Hex>");
    EXPECT_THAT(trace.lines(),
                testing::ElementsAre(testing::EndsWith(":----: Unknown EventID: 0x2")));
}

TEST(IoManager, Structures) {
    SuppressTrace quiet;
    const struct {
        RecordBuilder record;
        const char* expected;
    } cases[] = {
        {counted(2, 506, 4), "Volume_Number=0x00010203"},
        {counted(1, 10, 4), "Message=0x00010203"},
        {counted(12, 9, 4), "Interrupt=0x00010203"},
        {counted(1, 1, 8), "lwsem_valid_bit=0x00010203 lwsem_value=0x04050607"},
        {counted(1, 26, 40).u32(kData + 28, 0xFFFFFFFEu),
         "Drive_Number=-2 DRP_Command=0x00000022 DRP_PLBN=0x08090A0B:04050607 "
         "DRP_Xfer_Count=0x0C0D0E0F DRP_Error_PLBN=0x14151617:10111213 "
         "DRP_Residual_Count=0x18191A1B DRP_Status=0x00000020 DRP_Status_Flags=0x00000021 "
         "DRP_Command_Flags=0x00000023 DRP_Type=0x00000001 DRP_Diskline_Bitmap=0x24252627"},
        {counted(1, 32, 32),
         "msa_full_hi_level=0x00000001 msa_full_lo_level=0x00000203 msa_read_pointer=0x00000405 "
         "msa_write_pointer=0x00000607 msa_count=0x00000809 msa_not_mt_signal=0x00000A0B "
         "msa_base_address_of_data=0x0C0D0E0F msa_hysteresis=0x00000010 msa_mode=0x00000011 "
         "msa_size=0x00001213 msa_hi_mark_signal=0x00001415 msa_lo_mark_signal=0x00001617 "
         "msa_over_flow_signal=0x00001819 msa_under_flow_signal=0x00001A1B "
         "msa_write_check_point=0x1C1D1E1F"},
        {counted(8, 25, 28),
         "isurp_opcode=0x00000001 isurp_current_state=0x00000002 isurp_sender=0x00000003 "
         "isurp_scsi_flags=0x04050607 isurp_cache_mgr_flags=0x08090A0B "
         "isurp_io_mgr_flags=0x0C0D0E0F isurp_starting_vlbn=0x14151617:10111213 "
         "isurp_requested_block_count=0x18191A1B"},
        {counted(7, 2, 20),
         "mmsg_length=0x00000001 mmsg_requestor=0x00000002 mmsg_dest_ep=0x00000003 "
         "mmsg_return_code=0x08090A0B mmsg_general_use1=0x0C0D0E0F mmsg_general_use2=0x10111213 "
         "mmsg_opcode=0x04050607"},
        {event(7, 501, 4).u16(kData, 65535).u16(kData + 2, 3), "Device=65535 State=3"},
        {counted(20, 518, 12),
         "ndfe_flags=0x00000001 ndfe_device_id=0x00000203 ndfe_plbn=0x08090A0B:04050607"},
        {counted(24, 1003, 32).u32(kData, 1).u32(kData + 4, 2).u32(kData + 8, 0xFFFFFFFFu),
         "BTSN=1 Volume_Number=2 Task_Priority=-1 Task_Type=0x0C0D0E0F Task_Status=0x10111213 "
         "Task_Flags=0x14151617 HWM=0x18191A1B:1C1D1E1F"},
        {counted(25, 29, 40).u8(kData, 200).u32(kData + 28, 11).u16(kData + 36, 12),
         "rcd_cache_index=200 rcd_index=12 rcd_btsn=11 rcd_len=0x00000203 "
         "rcd_vlbn=0x08090A0B:04050607 rcd_flags=0x20212223 rcd_state=0x00002627 "
         "rcd_durable_name=0x0C0D0E0F:10111213:14151617:18191A1B"},
        {counted(25, 30, 52).u32(kData + 40, 9).u16(kData + 2, 8).u32(kData + 12, 7),
         "bcd_btsn=9 bcd_cache_index=0 bcd_index=8 bcd_highwater=0x08090A0B:04050607 bcd_men=7 "
         "bcd_mlbn=0x14151617:10111213 bcd_flags=0x2C2D2E2F bcd_opcode=0x00003031 "
         "bcd_state=0x00003233 bcd_durable_name=0x18191A1B:1C1D1E1F:20212223:24252627"},
        {counted(28, 31, 32).u32(kData + 28, 5).u16(kData + 2, 6).u32(kData + 16, 7),
         "rbt_btsn=5 rbt_volume_index=6 rbt_task_opcode=0x00000001 rbt_flags=0x04050607 "
         "rbt_highwater=0x0C0D0E0F:08090A0B rbt_men=7 rbt_mlbn=0x18191A1B:14151617"},
        {counted(1, 26, 3), "Drive_Number=0 DRP_Command=0x00000000 DRP_PLBN=0x00000000:00000000 "
                            "DRP_Xfer_Count=0x00000000 DRP_Error_PLBN=0x00000000:00000000 "
                            "DRP_Residual_Count=0x00000000 DRP_Status=0x00000000 "
                            "DRP_Status_Flags=0x00000000 DRP_Command_Flags=0x00000000 "
                            "DRP_Type=0x00000001 DRP_Diskline_Bitmap=0x00000000"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(dumpOf(c.record), entries(c.expected));
}

constexpr const char* kForcedError =
    "fer_volume_index=0x00000001 fer_flags=0x00000203 fer_device_id=0x00000405 "
    "fer_vlbn=0x0C0D0E0F:08090A0B fer_plbn=0x14151617:10111213";

// After a forced error record, so that each place is 24 bytes further on: 0x18.
TEST(IoManager, DisklineMetadata) {
    SuppressTrace quiet;
    const std::string expected =
        entries(kForcedError) +
        entries("dlm_flags=0x00000019 dlm_cache_index=0x0000001A dlm_index=0x1C1D1E1F "
                "dlm_ref_index=0x20212223 dlm_fe_device=0x24252627 "
                "dlm_dlme_vlbn_h=0x2C2D2E2F:28292A2B dlm_dlme_unique_id=0x30313233:34353637 "
                "dlm_dlme_plbn=0x3C3D3E3F:38393A3B dlm_dlme_fe_data=0x40414243 "
                "dlm_dlme_parity_fe_data=0x00004445 dlm_dlme_parity_fe_data=0x00004647 "
                "dlm_dlme_parity_fe_data=0x00004849 dlm_dlme_parity_fe_data=0x00004A4B "
                "dlm_dlme_parity_fe_data=0x00004C4D dlm_dlme_parity_fe_data=0x00004E4F "
                "dlm_dlme_parity_fe_data=0x00005051 dlm_dlme_parity_fe_data=0x00005253 "
                "dlm_dlme_vlbn_h=0x58595A5B:54555657");
    const std::string dump = dumpOf(counted(26, 509, 24 + 192));
    EXPECT_EQ(dump.substr(0, expected.size()), expected);
    EXPECT_EQ(count(dump, "<dlm_dlme_vlbn_h>"), 4u);
    EXPECT_EQ(count(dump, "<dlm_dlme_parity_fe_data>"), 32u);
    EXPECT_TRUE(dump.ends_with(entries("dlm_dlme_fe_data=0xC4C5C6C7 "
                                       "dlm_dlme_parity_fe_data=0x0000C8C9 "
                                       "dlm_dlme_parity_fe_data=0x0000CACB "
                                       "dlm_dlme_parity_fe_data=0x0000CCCD "
                                       "dlm_dlme_parity_fe_data=0x0000CECF "
                                       "dlm_dlme_parity_fe_data=0x0000D0D1 "
                                       "dlm_dlme_parity_fe_data=0x0000D2D3 "
                                       "dlm_dlme_parity_fe_data=0x0000D4D5 "
                                       "dlm_dlme_parity_fe_data=0x0000D6D7")));
}

TEST(IoManager, Volume) {
    SuppressTrace quiet;
    RecordBuilder record = counted(25, 28, 264 + 80);
    record.u64(kData + 16, 18446744073709551615u).u64(kData + 24, 10000000000u);
    record.u8(kData + 265, 9);
    EXPECT_EQ(
        dumpOf(record),
        entries("vt_common_flags=0x00010203 vt_common_organization=0x00000004 "
                "vt_common_stripe_width=0x00000006 vt_common_mirror_count=0x00000007 "
                "vt_common_volume_number=0x08090A0B "
                "vt_common_volume_capacity=18446744073709551615 "
                "vt_common_volume_highwater_mark=10000000000 vt_common_volume_state=0x30313233 "
                "iomgr_vt_flags=0xF0F1F2F3 iomgr_vt_=0xF0F1F2F3 iomgr_vt_extent_count=0x0000F6F7 "
                "iomgr_vt_num_extent_descriptors=0x04050607 "
                "iomgr_vt_volume_db_update_count=0xFCFDFEFF:00010203 "
                "iomgr_vt_chunk_size_shift_bits=0xF8F9FAFB "
                "ext_men=9 ext_status=0x00000C0D ext_flag=0x00000E0F ext_mlbn=0x10111213:14151617 "
                "ext_initial_plbn=0x18191A1B:1C1D1E1F ext_size=0x20212223:24252627 "
                "ext_vlbn_offset=0x28292A2B:2C2D2E2F ext_s_chunk=0x30313233:34353637 "
                "ext_e_chunk=0x38393A3B:3C3D3E3F "
                "ext_rebuild_highwater_mark=0x40414243:44454647 "
                "ext_durable_name=0x48494A4B:4C4D4E4F:50515253:54555657"));
}

TEST(IoManager, ExtentsThatBeginInTheDataArea) {
    SuppressTrace quiet;
    const struct {
        std::uint32_t eventClass, code, before; // bytes before the volume table
    } places[] = {{6, 510, 0}, {3, 5, 40}, {19, 12, 28}};
    const struct {
        std::uint32_t behind;
        std::size_t extents;
    } cases[] = {{0, 0}, {1, 1}, {40, 1}, {80, 1}, {81, 2}, {160, 2}};
    for (const auto& p : places)
        for (const auto& c : cases)
            EXPECT_EQ(count(dumpOf(counted(p.eventClass, p.code, p.before + 264 + c.behind)),
                            "<ext_men>"),
                      c.extents)
                << p.eventClass << " " << c.behind;
    // A length that the record doesn't have.
    EXPECT_EQ(count(dumpOf(counted(6, 510, 264 + 81).u32(16, 0xFFFFFFFFu)), "<ext_men>"), 2u);
    EXPECT_EQ(count(dumpOf(counted(6, 510, 100).u32(16, 0xFFFFFFFFu)), "<ext_men>"), 0u);
}

TEST(IoManager, ScatterGatherLists) {
    SuppressTrace quiet;
    // Group 0 is empty, group 1 has two entries, group 2 the rest of the data area.
    RecordBuilder record = event(27, 5, 128 + 4);
    record.u32(kData + 64, 1).u32(kData + 68, 2).u32(kData + 72, 3).u32(kData + 76, 4);
    record.u32(kData + 84, 9).u32(kData + 128, 0xABCDEF01u);
    EXPECT_EQ(dumpOf(record), entries("sgt_address=0x00000001 sgt_byte_count=0x00000002 "
                                      "sgt_address=0x00000003 sgt_byte_count=0x00000004 "
                                      "sgt_address=0xABCDEF01 sgt_byte_count=0x00000000"));
    EXPECT_EQ(count(dumpOf(record.u32(16, 128)), "<sgt_address>"), 2u);
    EXPECT_EQ(count(dumpOf(record.u32(16, 0xFFFFFFFFu)), "<sgt_address>"), 3u);
    // Full groups of eight after request packets.
    const struct {
        std::uint32_t eventClass, code, before;
    } places[] = {{14, 8, 28}, {17, 17, 28}, {21, 19, 28}, {15, 12, 40}};
    for (const auto& p : places) {
        const std::string dump = dumpOf(counted(p.eventClass, p.code, p.before + 64 + 8));
        EXPECT_EQ(count(dump, "<sgt_address>"), 9u) << p.eventClass;
        EXPECT_EQ(count(dumpOf(counted(p.eventClass, p.code, p.before)), "<sgt_address>"), 0u);
    }
}

TEST(IoManager, DriveErrors) {
    SuppressTrace quiet;
    const struct {
        std::uint32_t eventClass, code;
        const char *text, *state, *summary;
    } cases[] = {
        {33, 519, "Double Drive Exception", "Failed", "Drive 7, Double Drive Exception"},
        {33, 501, "Fatal Drive Error", "Failed", "Drive 7, Fatal Error"},
        {33, 520, "Drive Exception", "Exception", "Drive 7, Drive Exception"},
        {6, 501, "Fatal Drive Error", "Failed", "Drive 7, Fatal Error"},
    };
    for (const auto& c : cases) {
        const auto decoded = event(c.eventClass, c.code, 4).u32(kData, 7).decode();
        EXPECT_EQ(utf8(decoded->getEventID()), "Drive Error");
        EXPECT_EQ(utf8(decoded->getSummary()), c.summary);
        EXPECT_THAT(utf8(decoded->getBody()),
                    testing::EndsWith("<Request_Type>" + std::string(c.text) +
                                      "</Request_Type><Drive>7</Drive><State>" + c.state +
                                      "</State>"));
    }
}

TEST(IoManager, Asserts) {
    SuppressTrace quiet;
    const std::string z(200, 'z');
    const struct {
        std::string data, file, summary;
        std::uint32_t length;
    } cases[] = {
        {std::string("io.c\0", 5), "io.c", "io.c", 5},
        {"io.c", "io.c", "io.c", 4},
        {"io.c", "io", "io", 2},
        {"io.c", "", "", 0},
        {z, z.substr(0, 127), z.substr(0, 127), 200},
        {"a<b\xFF", "a<b?", "a<b?", 0xFFFFFFFFu},
        {"dir\\", "dir.", "dir\\", 4},
        {"dir\\\\", "dir\\\\", "dir\\\\", 5},
    };
    for (const auto& c : cases) {
        const auto decoded = event(31, 9, c.length).bytes(kData, c.data).decode();
        EXPECT_EQ(utf8(decoded->getSummary()), c.summary);
        EXPECT_THAT(utf8(decoded->getBody()),
                    testing::EndsWith("<Request_Type>ASSERT Error</Request_Type><File>" + c.file +
                                      "</File>"));
    }
}

// Adds a mark to each entry that passes.
class Marking : public IOMGR8P_Event {
public:
    explicit Marking(const EmpEvLogMsg_s* record) : IOMGR8P_Event(record, 0) {}
    void addEntry(char* tag, char* format, ...) override {
        char value[256];
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(value, sizeof value, format, arguments);
        va_end(arguments);
        char marked[] = "%s|";
        IOMGR8P_Event::addEntry(tag, marked, value);
    }
};

TEST(IoManager, OperationsOnAFinishedEvent) {
    SuppressTrace quiet;
    // Their entries are those that the constructor writes, one by one through addEntry().
    for (const RecordBuilder& builder :
         {counted(1, 32, 32), counted(26, 509, 24 + 192), counted(3, 5, 40 + 264 + 81),
          counted(33, 519, 4), counted(14, 8, 28 + 64), counted(5, 2, 0),
          event(31, 1, 5).bytes(kData, "<a>\\x")}) {
        const std::vector<unsigned char> bytes = builder.record();
        const auto* record = reinterpret_cast<const EmpEvLogMsg_s*>(bytes.data());
        const IOMGR8P_Event whole(record, static_cast<int>(bytes.size()));
        Marking again(nullptr);
        again.get_IOMGR8P_event_body(record);
        std::string body = utf8(again.getBody());
        EXPECT_EQ(count(body, "|</"), count(body, "</"));
        for (std::size_t at; (at = body.find("|</")) != body.npos;)
            body.erase(at, 1);
        EXPECT_EQ(body, utf8(whole.getBody()));
        EXPECT_EQ(utf8(again.getSummary()), utf8(whole.getSummary()));
    }

    IOMGR8P_Event made(nullptr, 0);
    char place = 'x';
    auto bytes = counted(6, 512, 40 + 264 + 80).record();
    bytes.resize(bytes.size() + 64); // the last group is read whole
    auto* evl = reinterpret_cast<const IOMGR_EVL*>(bytes.data() + 152);
    const char* data = reinterpret_cast<const char*>(evl + 1);
    made.setSummary("kept");
    made.get_IOMGR8P_device_class_event_body(evl, &place); // no such code: leaves the summary
    EXPECT_EQ(utf8(made.getSummary()), "kept");
    EXPECT_EQ(made.dump_volume(evl, nullptr, data + 40), nullptr);
    EXPECT_EQ(utf8(made.getBody()),
              dumpOf(counted(3, 5, 40 + 264 + 80)).substr(dumpOf(counted(1, 26, 40)).size()));
    made.setBody("");
    made.dump_sgt_list(evl, nullptr, data + 40 + 264 + 80 - 8);
    EXPECT_EQ(count(utf8(made.getBody()), "<sgt_address>"), 1u);
}

} // namespace
} // namespace Pegasus::test
