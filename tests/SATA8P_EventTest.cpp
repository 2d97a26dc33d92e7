#include "decoders/protocol/SATA8P_Event.h"

#include "tests/RecordBuilder.h"

#include <gmock/gmock.h>

namespace Pegasus::test {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr unsigned kDeviceManager = 6;

// Payload offsets: event body of versions 1 and 2, class data of version 3.
constexpr std::size_t b(std::size_t at) {
    return 36 + at;
}
constexpr std::size_t c(std::size_t at) {
    return 32 + at;
}

RecordBuilder version12(unsigned version, unsigned type, unsigned code) {
    RecordBuilder record(kDeviceManager, 1);
    record.version(version).u32(0, type).u32(4, code).u32(8, 0).u32(12, 77);
    record.u32(16, 16).u32(20, 20).u32(24, 24).u32(28, 0).u32(32, 0);
    return record.words(b(0), 30); // so that every element shows where it was read
}
RecordBuilder version1(unsigned number) {
    return version12(1, 9, number);
}
RecordBuilder version2(unsigned type, unsigned code) {
    return version12(2, type, code);
}
RecordBuilder version3(unsigned eventClass, unsigned identifier) {
    RecordBuilder record(kDeviceManager, 1);
    record.version(3).u32(0, eventClass).u32(4, identifier).u32(8, 11).u32(12, 12);
    record.u32(16, 13).u32(20, 14).u32(24, 0).u32(28, 0);
    return record.words(c(0), 43);
}

std::string title(const RecordBuilder& record) {
    return utf8(record.decode()->getEventID());
}
std::string summary(const RecordBuilder& record) {
    return utf8(record.decode()->getSummary());
}
std::string body(const RecordBuilder& record) {
    return utf8(record.decode()->getBody());
}

std::string element(const std::string& tag, const std::string& value) {
    return "<" + tag + ">" + value + "</" + tag + ">";
}
// "Tag=value; Tag=value"
std::string elements(std::string_view all) {
    std::string text;
    while (!all.empty()) {
        const std::string_view one = all.substr(0, all.find("; "));
        all.remove_prefix(std::min(one.size() + 2, all.size()));
        const std::size_t sign = one.find('=');
        text += element(std::string(one.substr(0, sign)), std::string(one.substr(sign + 1)));
    }
    return text;
}

class SATA8P_EventTest : public ::testing::Test {
    SuppressTrace quiet_;
};

TEST_F(SATA8P_EventTest, ChoosesTheGeneration) {
    const struct {
        unsigned version;
        std::uint32_t marker;
        const char* title;
    } cases[] = {
        {1, 0, "Fatal Error"},
        {1, 0xFFFFFFFF, "Invalid Event"},
        {5, 0xFFFFFFFF, "Invalid Event"},
        {5, 0xFFFFFFFE, "Fatal Error"},
        {2, 0, "Invalid Event"},
        {2, 0xFFFFFFFF, "Invalid Event"},
        {3, 0xFFFFFFFF, "Unknown (101)"},
        {0, 0, "Fatal Error"},
    };
    for (const auto& t : cases)
        EXPECT_EQ(title(version1(101).version(t.version).u32(0, 1).u32(8, t.marker)), t.title)
            << t.version << " " << t.marker;
}

TEST_F(SATA8P_EventTest, NoRecordLeavesTheBase) {
    const SATA8P_Event none(nullptr, 200);
    EXPECT_EQ(utf8(none.getEventID()), "");
    const std::vector<unsigned char> record = version1(101).record();
    const SATA8P_Event empty(reinterpret_cast<const EmpEvLogMsg_s*>(record.data()), 0);
    EXPECT_EQ(
        utf8(empty.getEventID()),
        utf8(Avrel_Event(reinterpret_cast<const EmpEvLogMsg_s*>(record.data()), 0).getEventID()));
    EXPECT_EQ(utf8(empty.getBody()), "");
}

// ---- version 1 ---------------------------------------------------------------------------------

TEST_F(SATA8P_EventTest, Version1) {
    const struct {
        unsigned first, last;
        const char* title;
        const char* summary; // null: the title
        const char* body;    // empty: as in the row before
    } cases[] = {
        {101, 105, "Fatal Error", nullptr, "Address=0x00000001"},
        {106, 110, "Fatal Error", nullptr, "Interrupt_Status=0x00000001"},
        {111, 117, "Invalid Parameter", nullptr, "Event_Type=9"},
        {118, 120, "Drive Inserted", "Drive 1, Became responsive",
         "Drive=1; Adapter_Handle=0x00000010; ID_Select=0x00000002"},
        {121, 123, "Drive Removed", "Drive 1, Offline device",
         "Drive=1; Adapter_Handle=0x00000010; ID_Select=0x00000002"},
        {124, 127, "Failed Discovery", "Drive 1, Busy during discovery",
         "Drive=1; Adapter_Handle=0x00000010; ID_Select=0x00000002"},
        {128, 131, "Port Error", "Drive 1, Reported 2 events", "Drive=1; Event_Count=2"},
        {132, 135, "Drive Stats", "Drive 1 Statistics",
         "Drive=1; Read_Count=2; Write_Count=3; WaitQ=4; WaitMax=5; SortedQ=6; SortedMax=7; "
         "OutstandingQ=8; OutstandingMax=9; Retry_Count=10"},
        {136, 143, "Device Error", "Status 3", "Message_type=1; Task_ID=0x00000002; Status=3"},
        {144, 151, "Adapter initialization failure", nullptr,
         "ChannelConnected_0=0; ChannelConnected_1=0; ChannelConnected_2=0; ChannelConnected_3=1; "
         "ChannelConnected_4=0; ChannelConnected_5=0; ChannelConnected_6=0; ChannelConnected_7=2; "
         "PCIDLLStatusAndControlRegister=0x00000003; PCICommandRegister=0x00000004; "
         "PCIModeRegister=0x00000005; PCISERRMaskRegister=0x00000006; IntCoalThre_0=0x00000007; "
         "IntCoalThre_1=0x00000008; IntTimeThre_0=0x00000009; IntTimeThre_1=0x0000000a; "
         "R00StatusBridgePortRegister_0=0x0000000b; R00StatusBridgePortRegister_1=0x0000000c; "
         "R00StatusBridgePortRegister_2=0x0000000d; R00StatusBridgePortRegister_3=0x0000000e; "
         "R00StatusBridgePortRegister_4=0x0000000f; R00StatusBridgePortRegister_5=0x00000010; "
         "R00StatusBridgePortRegister_6=0x00000011; R00StatusBridgePortRegister_7=0x00000012"},
        {152, 159, "Invalid CSCB Response", nullptr,
         "Adatper_Number=16; Channel_Index=24; Command_ID=0x00000001; Time_Stamp=2"},
        {160, 169, "Command Failure", "Drive 1, Command Failure, PLBN 0x500000006",
         "Drive=1; SectorCountRegister=0x00; LbaLowRegister=0x00; LbaMidRegister=0x00; "
         "LbaHighRegister=0x02; DeviceRegister=0x00; StatusRegister=0x00; ErrorRegister=0x00; "
         "Error_Cause=Unknown; Command=Write Long; PLBN=0x500000006; Xfer_Count=0x00000007"},
        {170, 177, "Command Timeout", "Drive 1, Command Timeout, PLBN 0x500000006", ""},
        {178, 183, "Drive Error", "Drive 1 Failure", ""},
        {184, 187, "Adapter initialization failure", nullptr, "Value=0x00000001"},
        {188, 191, "Adapter initialization failure", nullptr, "BAR_address=0x00000001"},
        {192, 201, "Invalid CSCB Response", "Status 0x0000000d",
         "CSCB_Number=1; State=2; Flags=0x00000003; Key=0x00000004; Total_Xfer_Length=0x00000005; "
         "Offset_Length=0x00000006; PRB_PLBN=0x700000008; PRB_Error_PLBN=0x90000000a; "
         "PRB_Xfer_Count=0x0000000b; PRB_Command=12; Resp_Status=0x0000000d"},
        {202, 211, "Command Failure", "Drive 8, Command Failure, PLBN 0x300000002",
         "DRP_PLBN=0x300000002; DRP_Xfer_Count=0x00000004; DRP_Error_PLBN=0x600000005; "
         "DRP_Residual_Count=0x00000007; DRP_Device=8; DRP_Status=Unknown (0); "
         "DRP_Status_Flags=0x00; DRP_Command=Read; DRP_Command_Flags=0x09; "
         "DRP_Diskline_Bitmap=0x0000000a; DRP_Timeout=11; DRP_Address=0x0000000c"},
        {212, 219, "Fatal Error", nullptr, "Handle=0x00000001; QMIR_wData=0x00000002"},
        {220, 225, "Device Offline", nullptr,
         "Channel_Number=24; PDT_Handle=0x00000001; Response=0x00000002; Timeout=3; "
         "Processed_Count=4; Sorted_Count=5; Wait_Count=6; CSCB_Count=7; Cmds_executed=8; "
         "Cmds_outstanding=9; Cmds_segmented=10; Support_Ext_Cmds=11"},
        {226, 230, "Failed to initialize a connected drive", nullptr, ""},
        {231, 234, "No valid devices discovered", nullptr, "Adapter_Number=16"},
        {235, 244, "Fatal Error", nullptr,
         "PRD_Address=0x00000001; SGT_Offset=0x00000002; Block_Count=3; EOT_Flag=4; PRD_Count=5; "
         "Bytes_To_Xfer=6; SGT_LH_Address=0x00000007; Byte_Count=8"},
        {245, 249, "Drive Operation", "Drive 1", "Drive=1; Operation=Identify"},
        {250, 257, "Asynchronous Adapter Error", nullptr,
         "PCI_Error_Code=0x00000002; PCI_Error_Cause=PCI slave detection of bad write data parity"},
        {258, 263, "Drive Discovered", "Drive 1",
         "Drive=1; Capacity=6144.0 GB; Max_PLBN=0x500000006; Model=MODEL A: B; Serial_Number=SN-1; "
         "Drive_State=2"},
        {264, 267, "Interrupt installation failure", nullptr, "Interrupt_Vector=1"},
        {268, 273, "Failed to initialize a connected drive", nullptr,
         "IsConnected=0; DMAEnabled=0; QueuedDMA=0; OutstandingCommands=1; "
         "EdmaConfigurationRegister=0x00000002; "
         "EdmaRequestQueueBaseAddressHighRegister=0x00000003; "
         "EdmaRequestQueueInPointerRegister=0x00000004; "
         "EdmaRequestQueueOutPointerRegister=0x00000005; "
         "EdmaResponseQueueBaseAddressHighRegister=0x00000006; "
         "EdmaResponseQueueInPointerRegister=0x00000007; "
         "EdmaResponseQueueOutPointerRegister=0x00000008; EdmaCommandRegister=0x00000009; "
         "PHYModeRegister=0x0000000a"},
        {274, 277, "Failed Discovery", "Drive 1, Failed Discovery", "Drive=1; ModelNumber=ABC-7"},
        {278, 281, "Structure alignment error", nullptr, "Structure_Address=0x00000001"},
        {282, 287, "Command response error", nullptr, "Response_Queue=0x00000001"},
        {288, 291, "Drive Stats", "Drive 1 Statistics",
         "Drive=1; Cscb_Count=2; Cmds_Executed=3; Cmds_Outstanding=4; Cmds_Segmented=5"},
        {292, 296, "Command response with invalid key value", nullptr,
         "Total_Xfer_Len=0x00000001; Offset_Len=0x00000002; CSCB_Key=0x00000003; "
         "Invalid_Key=0x00000004"},
        {297, 299, "Empty CSCB DRP listhead", nullptr, ""},
        {300, 305, "Drive Error", "Drive 1 Failure",
         "Drive=1; Type=Insert; Reason=Unknown (3); EDMA_Error_Register=0x00000004; "
         "Async_Data=0x00000005"},
        {306, 309, "Invalid Parameter", nullptr, "Parameter=0x00000001"},
    };
    std::string before;
    unsigned next = 101;
    for (const auto& t : cases) {
        EXPECT_EQ(t.first, next);
        next = t.last + 1;
        const std::string expected = *t.body ? elements(t.body) : before;
        before = expected;
        for (unsigned number = t.first; number <= t.last; ++number) {
            RecordBuilder record = version1(number);
            if (number >= 258 && number <= 263)
                record.bytes(b(24), "  MODEL A=B                             SN-1 \0 z");
            if (number >= 274 && number <= 277)
                record.bytes(b(4), "ABC-7                                   ");
            record.u32(32, number % 2 ? 0x8000 : 0).u32(28, number % 3);
            std::string wanted = expected + element("Event_Number", std::to_string(number)) +
                                 elements("Line_Number=77; Adapter=16; PCI_Bus=20; Channel=24");
            if (number % 2)
                wanted += element("Process_Flags", "0x00008000");
            if (number % 3)
                wanted += element("Missed_Events", std::to_string(number % 3));
            EXPECT_EQ(title(record), t.title) << number;
            EXPECT_EQ(summary(record), t.summary ? t.summary : t.title) << number;
            EXPECT_EQ(body(record), wanted) << number;
        }
    }
    EXPECT_EQ(next, 310u);
}

TEST_F(SATA8P_EventTest, Version1OutsideItsNumbersIsDumped) {
    for (const unsigned number : {0u, 100u, 310u, 0xFFFFFFFFu}) {
        const RecordBuilder record = version1(number).u32(60, 0xDEADBEEF).u32(64, 0x55555555);
        EXPECT_EQ(title(record), "Device Manager Event");
        EXPECT_EQ(summary(record), "");
        EXPECT_THAT(body(record), StartsWith("<Data>00000009"));
        EXPECT_THAT(body(record), EndsWith("DEADBEEF</Data>"));
        EXPECT_EQ(body(record).size(), 128 + sizeof "<Data></Data>" - 1);
    }
}

TEST_F(SATA8P_EventTest, Version1Values) {
    const auto command = [](unsigned status, unsigned error, std::uint32_t code) {
        return body(version1(160)
                        .u8(b(9), static_cast<std::uint8_t>(status))
                        .u8(b(10), static_cast<std::uint8_t>(error))
                        .u32(b(12), code));
    };
    EXPECT_THAT(command(0x51, 0x40, 0), HasSubstr("<Error_Cause>Data is uncorrectable<"));
    EXPECT_THAT(command(0x51, 0x40, 3), HasSubstr("<Error_Cause>Data is uncorrectable<"));
    EXPECT_THAT(command(0x51, 0x40, 1), HasSubstr("<Error_Cause>Data write protected<"));
    EXPECT_THAT(command(0x50, 0x40, 1), HasSubstr("<Error_Cause>Unknown<"));
    EXPECT_THAT(command(0x51, 0, 1), HasSubstr("<Error_Cause>Error bit set with no error (0x00)<"));
    EXPECT_THAT(command(0, 0, 0xFFFFFFFE), HasSubstr("<Command>4294967294</Command>"));
    EXPECT_THAT(body(version1(202).u16(b(32), 0x0206)),
                HasSubstr("<DRP_Status>Invalid Device</DRP_Status>"
                          "<DRP_Status_Flags>0x06</DRP_Status_Flags>"));
    EXPECT_EQ(summary(version1(250).u32(b(4), 0x80000000)),
              "Asynchronous Adapter Error PCI Error Data 0x80000000");
    // No byte of the record gets out unsafe.
    EXPECT_THAT(body(version1(274).text(b(4), "A<&>=")), Not(HasSubstr("&")));
}

// ---- version 2 ---------------------------------------------------------------------------------

TEST_F(SATA8P_EventTest, Version2Validity) {
    const struct {
        std::uint32_t type, code;
        const char* title;
        const char* summary;
    } cases[] = {
        {0, 1, "Invalid Event Type", "(0x00000000)"},
        {4, 1, "Invalid Event Type", "(0x00000004)"},
        {0x80000003, 1, "Invalid Event Type", "(0x80000003)"},
        {1, 0, "Invalid Event", "(0x00000000)"},
        {1, 11, "Invalid Event", "(0x0000000b)"},
        {2, 0x80000001, "Invalid Event", "(0x80000001)"},
        {3, 0, "Invalid Event", "(0x00000000)"},
        {3, 48, "Invalid Event", "(0x00000030)"},
    };
    for (const auto& t : cases) {
        EXPECT_EQ(title(version2(t.type, t.code)), t.title);
        EXPECT_EQ(summary(version2(t.type, t.code)), t.summary);
        EXPECT_EQ(body(version2(t.type, t.code)), "");
    }
    EXPECT_EQ(title(version2(1, 10)), "Hardware");
    EXPECT_EQ(summary(version2(3, 47)), "Invalid Bugcheck, Drive 1, Bugcheck 0x00000003");
}

TEST_F(SATA8P_EventTest, Hardware) {
    EXPECT_EQ(summary(version2(1, 1)),
              "Adapter not Found, Adapter 16, PCIX Bus 20, ID Select 0x00000001");
    EXPECT_EQ(body(version2(1, 1).u32(28, 3).u32(32, 0x10)),
              elements("Event=Adapter Not Found; Adapter=16; PCI_Bus=20; ID_Select=0x00000001; "
                       "Process_Flags=0x00000010; Missed_Events=3"));
    const struct {
        std::uint32_t code;
        const char* cause;
    } causes[] = {
        {0x6, "PCI slave detection of bad write data parity"},
        {0x4, "Parity error response to read data driven by the PCI slave"},
        {0x60, "Parity error response to write data driven by the PCI master"},
        {0x40, "Bad parity detection during a PCI master read transaction"},
        {0x80, "PCI master generation of target abort for split completion"},
        {0x100, "PCI master generation of master abort"},
        {0x200, "PCI master generation of target abort"},
        {0x400, "Attempt to generate a PCI transaction while master is disabled"},
        {0x800, "PCI master reached the retry counter limit"},
        {0x1000, "PCI master split completion discard timer expiration"},
        {0x2000, "PCI master received split completion when its byte count does not match the "
                 "original request"},
        {0x4000, "PCI master received message error"},
        {0x10000, "PCI slave generation of master abort as a completer"},
        {0x60000, "PCI slave generate target abort"},
        {0x40000, "PCI slave's read buffer discard timer expires"},
        {0x400000, "PCI slave reached the retry counter limit when attempting to generate a split "
                   "completion"},
    };
    for (const auto& t : causes) {
        const RecordBuilder record = version2(1, 2).u32(b(4), t.code);
        EXPECT_THAT(body(record),
                    EndsWith("</PCI_Error_Code>" + element("PCI_Error_Cause", t.cause)));
        EXPECT_EQ(summary(record), "Adapter Error, Adapter 16, PCIX Bus 20");
    }
    const RecordBuilder unknown = version2(1, 9).u32(b(4), 0x00808019);
    EXPECT_EQ(summary(unknown), "Adapter Error, Adapter 16, PCIX Bus 20 PCI Error Data 0x00808019");
    EXPECT_EQ(body(unknown),
              elements("Event=SATA Error; Adapter=16; PCI_Bus=20; PCI_Error_Code=0x00808019"));
}

TEST_F(SATA8P_EventTest, DriveEvents) {
    const struct {
        unsigned code;
        const char* title;
        const char* summary;
    } cases[] = {
        {1, "Drive Error", "Drive 1, Adapter Not Found"},
        {2, "Drive Error", "Drive 1, Adapter Error"},
        {3, "Drive Error", "Drive 1, Not Ready, Retryable"},
        {4, "Drive Error", "Drive 1, Failed Discovery, Retryable"},
        {5, "Drive Removed", "Drive 1, Removed"},
        {6, "Drive Inserted", "Drive 1, Inserted"},
        {7, "Drive Error", "Drive 1, Command Failed, Retryable"},
        {8, "Drive Error", "Drive 1, Command Timed Out, Retryable"},
        {9, "Drive Error", "Drive 1, SATA Error"},
        {10, "Drive Error", "Drive 1, Command Exceeded Allotted Time, Retryable, 19.018 Seconds"},
    };
    for (const auto& t : cases) {
        EXPECT_EQ(title(version2(2, t.code)), t.title);
        EXPECT_EQ(summary(version2(2, t.code)), t.summary);
    }
    const std::string place = elements("Drive=1; Adapter=16; PCI_Bus=20; Channel=24");
    EXPECT_EQ(body(version2(2, 5).u32(28, 7)),
              "<Event>Removed</Event>" + place + "<Missed_Events>7</Missed_Events>");
    EXPECT_EQ(body(version2(2, 9).u32(32, 1)),
              "<Event>SATA Error</Event>" + place +
                  elements("Type=Insert; Reason=Unknown (3); EDMA_Error_Register=0x00000004; "
                           "Async_Data=0x00000005; Process_Flags=0x00000001"));
    const RecordBuilder failed =
        version2(2, 7).u32(b(32), 0x01020304).u32(b(36), 0x05514000).u32(b(76), 31);
    EXPECT_EQ(
        body(failed),
        "<Event>Command Failed</Event>" + place +
            elements(
                "Command=Identify; Status=Retryable; Drive_CMD=0x00000004; Retry_Count=5; "
                "Error_LBA=0x700000008; Error_Cause=Data is uncorrectable; "
                "SectorCountRegister=0x01; LbaLowRegister=0x02; LbaMidRegister=0x03; "
                "LbaHighRegister=0x04; DeviceRegister=0x05; StatusRegister=0x51; "
                "ErrorRegister=0x40; DRP_Starting_LBA=0xb0000000c; DRP_Transfer_Count=0x0000000d; "
                "Drive_Starting_LBA=0xf00000010; Drive_Transfer_Count=0x00000011; "
                "Milli_Seconds=18; Seconds=19; Detailed_Status=Command Queue Full"));
    EXPECT_THAT(body(version2(2, 7)), HasSubstr("<Error_Cause>Unknown</Error_Cause>"));
    EXPECT_EQ(summary(version2(2, 8).u32(b(36), 0x00010000)),
              "Drive 1, Command Timed Out, Retryable, Error bit set with no error (0x00)");
}

TEST_F(SATA8P_EventTest, Bugchecks) {
    const struct {
        unsigned code;
        const char* summary;
        const char* object;
    } cases[] = {
        {1, "IRQ5 won't install, Drive 1", ""},
        {3,
         "Can't create MQX Semaphore, Drive 1, Semaphore Valid 0x00000002, Semaphore Value "
         "0x00000003",
         "Semaphore_Valid=0x00000002; Semaphore_Value=0x00000003"},
        {4, "Returned from Main Process Loop, Drive 1, Status 2", ""},
        {5, "Invalid Hardware Configuration, Drive 1, Hardware Configuration 0x00000002",
         "Hardware_Configuration=0x00000002"},
        {6, "Invalid PCIX Interrupt Status, Drive 1, PCIX Interrupt Status 0x00000002",
         "PCIX_Interrupt_Status=0x00000002"},
        {30, "SATA Software Response Queue Address not Aligned, Drive 1, Bad Address 0x00000002",
         "Bad_Address=0x00000002"},
        {31, "Unknown SATA Coftware Command Status, Drive 1, Status 11",
         "DRIVE_CMD_Flink=0x00000002; DRIVE_CMD_Blink=0x00000003; DCB=0x00000004; "
         "DRIVE_CMD_Flags=0x00000005; Total_Xfer_Count=0x00000006; Offset_Length=0x00000007; "
         "Time_Out=8; "
         "DRP_LH_Flink=0x00000009; DRP_LH_Blink=0x0000000a; Status=11; Retry_Count=12; "
         "Detailed_Status=13; PRD_Table=0x0000000e; PRB_LBA=0xf00000010; "
         "PRB_Error_LBA=0x1100000012; PRB_Xfer_Count=0x00000013; PRB_Command=20; PRB_DL_Index=21; "
         "SATA_CMD_Flags=0x00000016; SATA_Command=0x00000017; SATA_CMD_LBA=0x190000001a; "
         "SATA_CMD_Xfer_Count=0x0000001b; SATA_CMD_Low_DMA_Address=0x0000001c; "
         "SATA_CMD_Channel_Index=29; "
         "SATA_CMD_Handle=0x0000001e"},
        {32, "Unknown SATA Software Asynchronous Event, Drive 1, Asynchronous Data 0x00000002",
         "Asynchronous_Data=0x00000002"},
        {13, "Invalid DRP Parameter, Drive 1",
         "Device=2; LBA=0x300000004; SGT_LH_Flink=0x00000005; SGT_LH_Blink=0x00000006; "
         "Meta_Data_LH_Flink=0x00000007; Meta_Data_LH_Blink=0x00000008"},
        {17, "Spurious Interrupt, Drive 1, PIR 0x00000002, QMIR 0x00000003",
         "Peripheral_Interrupt_Register=0x00000002; Queue_Manager_Interrupt_Register=0x00000003"},
        {22, "Incoming Work MSA Queue Error, Drive 1, MSA Queue 0x00000002",
         "MSA_Queue=0x00000002; Full_High_Level=0x0000; Full_Low_Level=0x0003; "
         "Read_Pointer=0x0000; Write_Pointer=0x0004; Count=0; Not_Empty_Signal=0x0005; "
         "Base_Address=0x00000006; Hysteresis=0; Mode=0; Size=7; High_Watermark_Signal=0x0000; "
         "Low_Watermark_Signal=0x0008; Overflow_Signal=0x0000; Underflow_Signal=0x0009; "
         "Write_Checkpoint=0x0000000a"},
        {23, "Out of DRIVE_CMDs, Drive 1",
         "DCB_Flink=0x00000002; DCB_Blink=0x00000003; State=4; Active_Commands=5; Queue_Depth=6; "
         "DCB_Flags=0x00000007; Commands_Executed=8; PDT=0x00000009; "
         "Active_Command_LH_Flink=0x0000000a; Active_Command_LH_Blink=0x0000000b; "
         "Read_Commands=12; Write_Commands=13; Pending_Command_LH_Flink=0x0000000e; "
         "Pending_Command_LH_Blink=0x0000000f; Pending_SMART_Ops_LH_Flink=0x00000010; "
         "Pending_SMART_Ops_LH_Blink=0x00000011; Command_Time_Out=18; Identify_Retry_Count=19; "
         "DIB=0x00000014; Timed_Out_Command_LH_Flink=0x00000015; "
         "Timed_Out_Command_LH_Blink=0x00000016; Failed_NCQ_Command_Retry_LH_Flink=0x00000017; "
         "Failed_NCQ_Command_Retry_LH_Blink=0x00000018"},
        {33, "PRD Table not Equal to Data Transfer Request, Drive 1",
         "Command_Xfer_Count=0x00000002; DRP_Xfer_Count=0x00000003; SGT_Total_Byte_Count=4; "
         "SGTE_Address=0x00000005; "
         "SGTE_Byte_Count=6; SGTE_Address=0x00000007; SGTE_Byte_Count=8; SGTE_Address=0x00000009; "
         "SGTE_Byte_Count=10; SGTE_Address=0x0000000b; SGTE_Byte_Count=12; "
         "SGTE_Address=0x0000000d; SGTE_Byte_Count=14; SGTE_Address=0x0000000f; "
         "SGTE_Byte_Count=16; SGTE_Address=0x00000011; SGTE_Byte_Count=18; "
         "SGTE_Address=0x00000013; SGTE_Byte_Count=20"},
        {41, "PCIX DWORD Read Timed Out, Drive 1",
         "Bus=2; Address=0x00000003; Command=Invalid; Write_Data=0x00000005"},
        {44, "Invalid Event, Drive 1, Event 2", "Event=2"},
        {45, "Invalid Event Type, Drive 1, Event Type 2", "Event_Type=2"},
        {46, "Invalid Bugcheck Information, Drive 1, Bugcheck Information 0x00000002",
         "Bugcheck_Information=0x00000002"},
        {47, "Invalid Bugcheck, Drive 1, Bugcheck 0x00000003",
         "Event_Type=2; Bugcheck_Information=0x00000003"},
    };
    const std::string place =
        elements("Drive=1; Adapter=16; PCI_Bus=20; Channel=24; Missed_Events=5");
    for (const auto& t : cases) {
        const RecordBuilder record = version2(3, t.code).u32(28, 5).u32(32, 0x20);
        EXPECT_EQ(title(record), "Bugcheck");
        EXPECT_EQ(summary(record), t.summary);
        EXPECT_EQ(body(record),
                  place + elements(t.object) + "<Process_Flags>0x00000020</Process_Flags>")
            << t.code;
    }
    EXPECT_THAT(body(version2(3, 36).u32(b(12), 0xFFFFFFFF)), HasSubstr("<Command>Burst Read<"));
    // Lists end at an address of zero, and with the payload's last whole word.
    EXPECT_THAT(body(version2(3, 35).u32(b(24), 0)),
                EndsWith("<SGTE_Byte_Count>6</SGTE_Byte_Count>"));
    EXPECT_THAT(body(version2(3, 43).payloadLength(b(16) + 11)),
                EndsWith("<Timed_Out_Response_Entry>0x00000004</Timed_Out_Response_Entry>"
                         "<Entry_0>0x00000005</Entry_0><Entry_1>0x00000006</Entry_1>"));
}

// ---- version 3 ---------------------------------------------------------------------------------

const std::string kHandles = elements("Initiator_Handle=0x00000001; Target_Handle=0x00000002; "
                                      "LUN_Handle=0x00000003; LU_Handle=0x00000004");
// Protocol 5 is none of SATA: a CDB of 13 bytes, and no sense data.
const std::string kSlots =
    elements("CDB=00 00 00 09 00 00 00 0a 00 00 00 0b 00; CDB_Length=13; Sense_Key=Unknown");
const std::string kTransfer =
    elements("Total_Byte_Count=24; Current_Byte_Count=25; Residual_Byte_Count=26; Protocol=Unknown "
             "(5); Transport=Unknown (6); Hardware=Unknown (7)") +
    kHandles;
const std::string kSeconds = element("Seconds", "28.029 Seconds");
const std::string kAdapter = elements("Adapter=13; PCI_Bus=14");
const std::string kPath = elements("Expander=11; PHY=12") + kAdapter;

TEST_F(SATA8P_EventTest, Version3) {
    const struct {
        unsigned eventClass, identifier;
        const char* title;
        const char* summary;
        std::string body;
    } cases[] = {
        {1, 1, "SAS Status", "SAS Status, Device 8, Unknown (27)",
         elements("Device=8; SAS_Status_Value=0x0000001b; SAS_Status_String=Unknown (27)") +
             kSlots + kTransfer + kSeconds + kPath},
        {1, 2, "Command Timeout", "Command Timeout, Device 8, 28.029 Seconds",
         element("Device", "8") + kSlots + kTransfer + kSeconds + kPath},
        {1, 3, "Command Exceeded Allotted Time",
         "Command Exceeded Allotted Time, Device 8, 28.029 Seconds",
         elements("Device=8; Milli_Seconds=29; Command_Status=Unknown (30)") + kSlots + kTransfer +
             element("Device", "28") + kSeconds + kPath},
        {1, 4, "IOC Status", "IOC Status, Device 8, Unused",
         elements("IOC_Status_Value=0x0000001b; IOC_Status_String=Unused") + kSlots + kTransfer +
             kSeconds + kPath},
        {1, 5, "IOC Log Information", "IOC Log Information, Device 8",
         elements("Device=8; IOC_Log_Information=0x0000001b") + kSlots + kTransfer + kSeconds +
             kPath},
        {1, 15, "SAS Port", "SAS Port 1 Information 0x00000006",
         elements(
             "Doorbell_Register=0x00000002; Diagnostic_Register=0x00000003; IOC_Status=0x00000005; "
             "Information=0x00000006; Line_Number=4; Transport=Unknown (8); Hardware=Unknown (9)") +
             kAdapter},
        {1, 16, "SAS Zero Reply", "SAS Zero Reply",
         elements("Loop_Count=1; Zero_Reply_Count=2; Transport=Unknown (3); Hardware=Unknown (4)") +
             kAdapter},
        {1, 6, "IOC Log Event Notice", "Unknown data (class 1, identifier 6)", kPath},
        {1, 7, "Target Attention", "Unknown data (class 1, identifier 7)", kPath},
        {1, 0, "Invalid", "Unknown data (class 1, identifier 0)", kPath},
        {2, 10, "SATA Error", "Drive 15, SATA Error, Unknown",
         elements("Drive=15; Error_Cause=Unknown; Retry_Count=14; DRP_Start_LBA=0x90000000a; "
                  "DRP_Transfer_Count=0x00000026; Device_Transfer_Count=0x00000027; "
                  "Error_LBA=0xb0000000c; Protocol=Unknown (5); Type=Unknown (6); Serial_Number=; "
                  "Model=; Firmware_Revision=; Capacity=14336.0 GB; Block_Size=13") +
             kHandles + kPath},
        {2, 11, "SCSI Error", "Drive 15, SCSI Error, Unknown",
         elements("Drive=15; Sense_Key=Unknown; Retry_Count=14; DRP_Start_LBA=0x90000000a; "
                  "DRP_Transfer_Count=0x00000029; Device_Transfer_Count=0x0000002a; "
                  "Error_LBA=0xb0000000c; Protocol=Unknown (5); Type=Unknown (6); Serial_Number=; "
                  "Model=; Vendor=; Firmware_Revision=; Capacity=14336.0 GB; Block_Size=13") +
             kHandles + kPath},
        {2, 12, "Reset LU", "Reset LU",
         elements("Drive=7; Protocol=Unknown (5); Type=Unknown (6)") + kHandles + kPath},
        {2, 13, "Identify Data Invalid", "Identify Data Invalid",
         elements("Initiator_Handle=0x00000001; Target_Handle=0x00000002; LUN_Handle=0x00000003; "
                  "LUN=6; Integrity_Signature=0x00; Integrity_Checksum=0x00; Protocol=Unknown (4); "
                  "Opcode=0; Serial_Number=; Model=; Vendor=; Firmware_Revision=") +
             kPath},
        {3, 7, "Target Attention", "Target 8, Unknown (3)",
         elements("Cause=Unknown (3); Target=8; Protocol=Unknown (4); Transport=Unknown (5); "
                  "Hardware=Unknown (6); Link_Speed=Unknown (7); Durable_Name=0x90000000a; "
                  "Initiator_Handle=0x00000001; Target_Handle=0x00000002") +
             kPath},
        {3, 8, "LUN Attention", "LUN 4, Unknown (5)",
         elements("Cause=Unknown (5); LUN=4; Protocol=Unknown (6); Type=Unknown (7); "
                  "Initiator_Handle=0x00000001; Target_Handle=0x00000002; LUN_Handle=0x00000003") +
             kPath},
        {3, 9, "LU Attention", "LU 11, Unknown (5)",
         elements("Cause=Unknown (5); LU=11; Protocol=Unknown (6); Type=Unknown (7); "
                  "Capacity=18432.0 GB; Block_Size=8") +
             kHandles + elements("Serial_Number=; Model=; Vendor=; Firmware_Revision=") + kPath},
        {4, 14, "Bugcheck", "SCSI Class Driver, Line 2",
         elements("Module=SCSI Class Driver; Line_Number=2; Pameter_1=0x00000003; "
                  "Pameter_2=0x00000004; Pameter_3=0x00000005; Pameter_4=0x00000006")},
        {5, 17, "DEVMGR Trace Time", "DEVMGR Trace Time", element("Line_Number", "1")},
        {5, 15, "SAS Port", "SAS Port", element("Line_Number", "1")},
        {6, 15, "SAS Port", "Unknown data (class 6, identifier 15)", kAdapter},
        {9, 18, "Unknown (18)", "Unknown data (class 9, identifier 18)", kPath},
    };
    for (const auto& t : cases) {
        const RecordBuilder record = version3(t.eventClass, t.identifier);
        EXPECT_EQ(title(record), t.title);
        EXPECT_EQ(summary(record), t.summary);
        EXPECT_EQ(body(record), t.body);
    }
    EXPECT_THAT(body(version3(4, 14).u32(24, 3)), EndsWith("<Missed_Events>3</Missed_Events>"));
}

TEST_F(SATA8P_EventTest, Version3Names) {
    const auto sas = [](std::uint32_t status) {
        return summary(version3(1, 1).u32(c(104), status)).substr(22);
    };
    EXPECT_EQ(sas(4), "UTC Break ReceviedUTC Connect Rate Not Support");
    EXPECT_EQ(sas(9), "Short Infomration Unit");
    EXPECT_EQ(sas(19), "Initiator Respnse Timeout");
    EXPECT_EQ(sas(20), "Unknown (20)");
    const std::pair<std::uint32_t, const char*> ioc[] = {
        {5, "Reserved"},
        {9, "Op State Not Supported"},
        {10, "Unused"},
        {36, "Config No Defauilts"},
        {37, "Config Can't Commit"},
        {64, "SCSI Recovered Error"},
        {79, "EEDP App Tag Error"},
        {103, "FC Rx Id Invaild"},
        {113, "Target Nak Recevied"},
        {131, "Lan Tranmit Aborted"},
        {135, "Lan Canceled"},
        {145, "SAS SMP Data Overrun"},
        {152, "Inband Aborted"},
        {153, "Inband No Connection"},
        {159, "Unused"},
        {160, "Diagnostic Released"},
        {161, "Unknown (161)"},
        {0xFFFFFFFF, "Unknown (4294967295)"},
    };
    for (const auto& [status, name] : ioc)
        EXPECT_EQ(summary(version3(1, 4).u32(c(104), status)),
                  std::string("IOC Status, Device 8, ") + name);
    EXPECT_THAT(
        body(version3(3, 7).u32(c(8), 1).u32(c(12), 1).u32(c(16), 1).u32(c(20), 2).u32(c(24), 2)),
        StartsWith(elements("Cause=Removed; Target=8; Protocol=SCSI; Transport=SAS; Hardware=LSI "
                            "1068; Link_Speed=3.0 Gb/S")));
}

constexpr std::string_view kCommandFis("\x27\x80\x60\x01\x10\x20\x30\x40\x50\x60\x70\x02\x08\x09\0"
                                       "\x0A\0\0\0\0",
                                       20);
constexpr std::string_view kStatusFis("\x34\x40\x51\x40\x11\x22\x33\x44\x55\x66\x77\x03\x18\x19\0"
                                      "\x1A\0\0\0\0",
                                      20);
constexpr std::string_view kSense("\xF0\0\xE4\x01\x02\x03\x04\x0A\0\0\0\0\x44\x01\0\0\0\0", 18);
const std::string kCommandFisText =
    elements("Command_FIS_LBA=0x706050302010; Command_FIS_FIS_Type=0x27; Command_FIS_C_PM=0x80; "
             "Command_FIS_Command=0x60; Command_FIS_Features=0x01; Command_FIS_Device=0x40; "
             "Command_FIS_Features_Exp=0x02; Command_FIS_Sector_Count=0x08; "
             "Command_FIS_Sector_Count_Exp=0x09; Command_FIS_Control=0x0a");
const std::string kStatusFisText =
    elements("Error_Cause=Data is uncorrectable; Status_FIS_LBA=0x776655332211; "
             "Status_FIS_FIS_Type=0x34; Status_FIS_C_PM=0x40; Status_FIS_Status=0x51; "
             "Status_FIS_Error=0x40; Status_FIS_Features_Exp=0x03; Status_FIS_Sector_Count=0x18; "
             "Status_FIS_Sector_Count_Exp=0x19; Status_FIS_Control=0x1a");
const std::string kSenseText = elements(
    "Sense_Key=Harware Failure; Sense_Key=0x04; ASC=0x44; ASCQ=0x01; Information=0x01020304");

TEST_F(SATA8P_EventTest, CommandAndOutcome) {
    const std::string cdb = elements("CDB=28 00 ff; CDB_Length=3");
    const RecordBuilder sata =
        version3(1, 2).u32(c(16), 0).bytes(c(32), kCommandFis).bytes(c(52), kStatusFis);
    EXPECT_THAT(body(sata), StartsWith("<Device>8</Device>" + kCommandFisText + kStatusFisText +
                                       "<Total_Byte_Count>"));
    const RecordBuilder scsi =
        version3(1, 2).u32(c(16), 1).u32(c(32), 0x2800FF00).u32(c(48), 3).bytes(c(52), kSense);
    EXPECT_THAT(body(scsi),
                StartsWith("<Device>8</Device>" + cdb + kSenseText + "<Total_Byte_Count>"));
    // Neither shown when it is not there; the cause still knows the command.
    EXPECT_THAT(body(RecordBuilder(sata).u8(c(32), 0)),
                StartsWith("<Device>8</Device>" + kStatusFisText));
    EXPECT_THAT(body(RecordBuilder(sata).u8(c(52), 0)),
                HasSubstr(kCommandFisText + "<Error_Cause>Unknown</Error_Cause><Total"));
    for (const std::uint32_t length : {0u, 17u, 0xFFFFFFFFu})
        EXPECT_THAT(body(RecordBuilder(scsi).u32(c(48), length)), Not(HasSubstr("CDB")));
    EXPECT_THAT(body(RecordBuilder(scsi).u32(c(48), 16)), HasSubstr("<CDB_Length>16<"));
    EXPECT_THAT(body(RecordBuilder(scsi).u8(c(52), 0x71)), HasSubstr(kSenseText));
    EXPECT_THAT(body(RecordBuilder(scsi).u8(c(52), 0x72)), Not(HasSubstr("ASC")));

    const RecordBuilder sataError = version3(2, 10)
                                        .bytes(c(60), kCommandFis)
                                        .bytes(c(80), " SERIAL = 1         MODEL\0")
                                        .bytes(c(100), "MODEL <1>" + std::string(31, ' '))
                                        .bytes(c(140), "FW<2>   ")
                                        .bytes(c(156), kStatusFis);
    EXPECT_EQ(summary(sataError), "Drive 15, SATA Error, Data is uncorrectable");
    EXPECT_THAT(body(sataError),
                StartsWith("<Drive>15</Drive>" + kStatusFisText + "<Retry_Count>"));
    EXPECT_THAT(body(sataError), HasSubstr("</Error_LBA>" + kCommandFisText + "<Protocol>"));
    EXPECT_THAT(
        body(sataError),
        HasSubstr(elements("Serial_Number=SERIAL :  1; Model=MODEL ?1?; Firmware_Revision=FW?2?")));

    const RecordBuilder scsiError =
        version3(2, 11)
            .u32(c(60), 0x2800FF00)
            .u32(c(76), 3)
            .bytes(c(80), kSense)
            .bytes(c(112), "SN" + std::string(18, ' ') + "MODEL 2         ")
            .bytes(c(148), "VENDOR  1.02");
    EXPECT_EQ(summary(scsiError), "Drive 15, SCSI Error, Harware Failure");
    EXPECT_THAT(body(scsiError), StartsWith("<Drive>15</Drive>" + kSenseText + "<Retry_Count>"));
    EXPECT_THAT(body(scsiError), HasSubstr("</Error_LBA>" + cdb + "<Protocol>"));
    EXPECT_THAT(body(scsiError),
                HasSubstr(elements(
                    "Serial_Number=SN; Model=MODEL 2; Vendor=VENDOR; Firmware_Revision=1.02")));

    for (const auto& [eventClass, identifier, protocol, strings] :
         {std::tuple{2u, 13u, 12u, 24u}, std::tuple{3u, 9u, 20u, 44u}}) {
        const RecordBuilder unit =
            version3(eventClass, identifier)
                .u32(c(protocol), 0)
                .bytes(c(strings), std::string(20, 'S') + std::string(40, 'M') + "FIRMWARE");
        EXPECT_THAT(body(unit), HasSubstr(elements("Serial_Number=" + std::string(20, 'S') +
                                                   "; Model=" + std::string(40, 'M') +
                                                   "; Firmware_Revision=FIRMWARE")));
    }
}

// ---- fields ------------------------------------------------------------------------------------

TEST(SATA8P_Fields, Capacity) {
    const std::pair<unsigned long long, const char*> cases[] = {
        {0, "0.0 B"},
        {1, "512.0 B"},
        {2, "1024.0 B"},
        {3, "1.5 KB"},
        {2048, "1024.0 KB"},
        {2049, "1.0 MB"},
        {2097152, "1024.0 MB"},
        {2097153, "1.0 GB"},
        {1953525168, "931.5 GB"},
        {16777217, "8.0 GB"},                     // one more than single precision holds
        {0x0080000080000001, "17179871232.0 GB"}, // just above the middle of two
        {0x8000000000000000, "4398046511104.0 GB"},
        {0xFFFFFFFFFFFFFFFF, "8796093022208.0 GB"},
    };
    for (const auto& [sectors, text] : cases) {
        EXPECT_EQ(SATA8P_Event::get_capacity(sectors), text);
        EXPECT_EQ(SATA8P_Event::get_capacity(static_cast<unsigned>(sectors >> 32),
                                             static_cast<unsigned>(sectors)),
                  text);
    }
}

TEST(SATA8P_Fields, ShortTexts) {
    EXPECT_EQ(SATA8P_Event::build_seconds(0, 0), "0.000 Seconds");
    EXPECT_EQ(SATA8P_Event::build_seconds(12, 1500), "13.500 Seconds");
    EXPECT_EQ(SATA8P_Event::build_seconds(0xFFFFFFFF, 0xFFFFFFFF), "4299262262.295 Seconds");
    EXPECT_EQ(SATA8P_Event::get_marvell_command(6), "Get SMART Status");
    EXPECT_EQ(SATA8P_Event::get_marvell_command(8), "8");
    EXPECT_EQ(SATA8P_Event::get_marvell_command(0x80000000), "2147483648");
    EXPECT_EQ(SATA8P_Event::get_drp_command(2), "Identify");
    EXPECT_EQ(SATA8P_Event::get_drp_command(3), "3");
    const std::tuple<unsigned, unsigned, const char*> status[] = {
        {0, 0, "Unknown (0)"},         {1, 9, "Success"},
        {2, 0, "Unknown failure (0)"}, {2, 1, "Invalid Parameter"},
        {2, 2, "Uncorrectable Error"}, {2, 3, "Device Fault"},
        {2, 4, "Unknown failure (4)"}, {2, 6, "Invalid Device"},
        {2, 7, "Unknown failure (7)"}, {3, 1, "Unknown (3)"},
    };
    for (const auto& [code, detail, text] : status)
        EXPECT_EQ(SATA8P_Event::get_drp_status(code, detail), text);
    EXPECT_EQ(SATA8P_Event::build_unknown_string(4294967295), "Unknown (4294967295)");
    EXPECT_EQ(SATA8P_Event::get_inquiry_string("  A B  xx", 7), "A B");
    EXPECT_EQ(SATA8P_Event::get_inquiry_string("     ", 5), "");
    EXPECT_EQ(SATA8P_Event::get_inquiry_string("AB \0CD", 6), "AB");
    EXPECT_EQ(SATA8P_Event::get_inquiry_string("AB", 0), "");
}

TEST(SATA8P_Fields, Structures) {
    XmlString text;
    const unsigned char cdb[] = {0x28, 0x00, 0xFF};
    SATA8P_Event::build_cdb(text, cdb, 0);
    SATA8P_Event::build_cdb(text, cdb, 3);
    EXPECT_EQ(text, "<CDB></CDB><CDB_Length>0</CDB_Length>"
                    "<CDB>28 00 ff</CDB><CDB_Length>3</CDB_Length>");

    SATA_HOST_DEVICE_FIS command;
    SATA_DEVICE_HOST_FIS status;
    SCSI_REQ_SENSE_DATA sense;
    std::memcpy(&command, kCommandFis.data(), sizeof command);
    std::memcpy(&status, kStatusFis.data(), sizeof status);
    std::memcpy(&sense, kSense.data(), sizeof sense);
    std::string summary = "Drive 1, ";
    text.clear();
    SATA8P_Event::build_command_fis(text, command);
    EXPECT_EQ(text, kCommandFisText);
    text.clear();
    SATA8P_Event::build_status_fis(text, status, command, summary);
    EXPECT_EQ(text, kStatusFisText);
    EXPECT_EQ(summary, "Drive 1, Data is uncorrectable");
    text.clear();
    summary.clear();
    SATA8P_Event::build_request_sense(text, sense, summary);
    EXPECT_EQ(text, kSenseText);
    EXPECT_EQ(summary, "Harware Failure");
}

TEST(SATA8P_Fields, ErrorCauses) {
    const std::tuple<int, int, const char*> cases[] = {
        {0x41, 0x25, "Obselete/unknown"},
        {0xFE, 0x25, "No media present in removable media device"},
        {0xFC, 0x25, "Aborted command"},
        {0xF8, 0x25, "Media change request detected"},
        {0xF0, 0x25, "User addressable address could not be found"},
        {0xE0, 0x25, "Media changed since issuance of last command"},
        {0xC0, 0x25, "Data is uncorrectable"},
        {0x40, 0x60, "Data is uncorrectable"},
        {0x40, 0x22, "Data is uncorrectable"},
        {0x40, 0x35, "Data write protected"},
        {0x80, 0x25, "CRC error occurred during a UDMA data transfer"},
        {0x00, 0x25, "Error bit set with no error (0x00)"},
    };
    for (const auto& [error, code, cause] : cases) {
        SATA_DEVICE_HOST_FIS status{};
        SATA_HOST_DEVICE_FIS command{};
        status.error = static_cast<std::uint8_t>(error);
        command.command = static_cast<std::uint8_t>(code);
        XmlString text;
        std::string summary;
        SATA8P_Event::build_status_fis(text, status, command, summary);
        EXPECT_EQ(summary, cause);
        EXPECT_THAT(text, StartsWith(element("Error_Cause", cause) + "<Status_FIS_LBA>"));
    }
}

// ---- the builders that callers may use alone ---------------------------------------------------

TEST_F(SATA8P_EventTest, BuildersAgreeWithTheConstructor) {
    const auto check = [](const RecordBuilder& builder, auto build) {
        const std::vector<unsigned char> record = builder.record();
        SATA8P_Event event(nullptr, 0);
        build(event, record.data());
        const auto wanted = builder.decode();
        EXPECT_EQ(utf8(event.getEventID()), utf8(wanted->getEventID()));
        EXPECT_EQ(utf8(event.getSummary()), utf8(wanted->getSummary()));
        EXPECT_EQ(utf8(event.getBody()), utf8(wanted->getBody()));
    };
    const auto header = [](const unsigned char* record) {
        return reinterpret_cast<const DEVICE_MGR_EVL_HDR*>(record + 152);
    };
    check(version1(200), [](SATA8P_Event& event, const unsigned char* record) {
        event.build_version_1_events(reinterpret_cast<const EmpEvLogMsg_s*>(record), 0);
    });
    check(version2(3, 48), [](SATA8P_Event& event, const unsigned char* record) {
        event.build_version_2_events(reinterpret_cast<const EmpEvLogMsg_s*>(record));
    });
    check(version3(2, 10), [](SATA8P_Event& event, const unsigned char* record) {
        event.build_version_3_events(reinterpret_cast<const DM_EVL*>(record));
    });
    check(version2(1, 2), [&](SATA8P_Event& event, const unsigned char* record) {
        event.build_hardware_event(reinterpret_cast<const DEVICE_MGR_HARDWARE_EVENT*>(record + 188),
                                   header(record), 2);
    });
    check(version2(2, 7), [&](SATA8P_Event& event, const unsigned char* record) {
        event.build_drive_event(reinterpret_cast<const DEVICE_MGR_DRIVE_EVENT*>(record + 188),
                                header(record), 7);
    });
    check(version2(3, 43), [&](SATA8P_Event& event, const unsigned char* record) {
        event.build_bugcheck_event(
            reinterpret_cast<const DEVICE_MGR_BUG_CHECK_EVENT*>(record + 188), header(record), 43);
    });

    using Build = void (SATA8P_Event::*)(const DM_EVL*, XmlString&);
    const std::tuple<unsigned, unsigned, Build, std::string> classes[] = {
        {1, 15, &SATA8P_Event::build_xport_event_v3, kAdapter},
        {2, 12, &SATA8P_Event::build_device_event_v3, kPath},
        {3, 8, &SATA8P_Event::build_attention_event_v3, kPath},
        {4, 14, &SATA8P_Event::build_bugcheck_event_v3, ""},
        {5, 17, &SATA8P_Event::build_trace_time_v3, ""},
    };
    for (const auto& [eventClass, identifier, build, behind] : classes) {
        const RecordBuilder builder = version3(eventClass, identifier);
        const std::vector<unsigned char> record = builder.record();
        SATA8P_Event event(nullptr, 0);
        XmlString text;
        (event.*build)(reinterpret_cast<const DM_EVL*>(record.data()), text);
        EXPECT_EQ(text + behind, body(builder));
        EXPECT_EQ(utf8(event.getSummary()), summary(builder));
    }
}

} // namespace

} // namespace Pegasus::test
