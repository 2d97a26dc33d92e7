// Which code shows which structure, for all codes of all decoders. What the structures hold is
// tested with their decoders, as are the numbers of the device manager's version 1.
#include "tests/RecordBuilder.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <sstream>

namespace Pegasus::test {
namespace {

using testing::EndsWith;
using testing::StartsWith;

using Names = std::vector<std::string>;
using Aliases = std::map<std::string, std::string>;

// What a code shows: structures, each by an element that tells it ("Tag" or "Tag=value"), in the
// order of the body. And a text.
struct Code {
    Names shows;
    std::string text;
};
using Codes = std::map<unsigned, Code>;

constexpr unsigned kOther = 0xFFFFFFFF; // a code that is not listed

// "1-3,7 +Tag+Tag text; 4; *": the codes 1 to 3 and 7, code 4, all others.
Codes parse(const std::string& list) {
    const auto split = [](const std::string& text, char separator) {
        Names parts;
        std::istringstream in(text);
        for (std::string part; std::getline(in >> std::ws, part, separator);)
            parts.push_back(part);
        return parts;
    };
    const auto number = [](const std::string& text) {
        return text == "*" ? kOther : static_cast<unsigned>(std::stoul(text));
    };
    Codes codes;
    for (const std::string& one : split(list, ';')) {
        std::istringstream words(one);
        std::string numbers, tags;
        Code code;
        words >> numbers >> std::ws;
        if (words.peek() == '+')
            words.ignore() >> tags >> std::ws;
        std::getline(words, code.text);
        code.shows = split(tags, '+');
        for (const std::string& run : split(numbers, ',')) {
            const Names ends = split(run, '-');
            const unsigned first = number(ends.front());
            for (unsigned i = 0; i <= number(ends.back()) - first; ++i)
                EXPECT_TRUE(codes.emplace(first + i, code).second) << one;
        }
    }
    return codes;
}
const Code* find(const Codes& codes, unsigned number) {
    const auto at = codes.find(number);
    const auto other = codes.find(kOther);
    return at != codes.end() ? &at->second : other != codes.end() ? &other->second : nullptr;
}

// Those of `names` that the body shows, in its order. A tag counts where it occurs first.
Names shown(const std::string& body, const std::set<std::string>& names,
            const Aliases& aliases = {}) {
    std::map<std::size_t, std::string> found;
    for (const std::string& name : names) {
        const auto alias = aliases.find(name);
        const std::string tell = alias == aliases.end() ? name : alias->second;
        const std::size_t sign = tell.find('=');
        const std::string tag = "<" + tell.substr(0, sign) + ">";
        const std::size_t at = body.find(tag);
        if (at != body.npos &&
            (sign == tell.npos ||
             body.compare(at + tag.size(), tell.size() - sign, tell.substr(sign + 1) + "<") == 0))
            found[at] = name;
    }
    Names out;
    for (const auto& [at, name] : found)
        out.push_back(name);
    return out;
}

// Each code from `first` to `last` shows its structures and none of the others; its summary ends
// with its text.
void check(const std::string& list, unsigned first, unsigned last,
           RecordBuilder (*make)(unsigned code)) {
    const SuppressTrace quiet;
    const Codes codes = parse(list);
    std::set<std::string> names;
    for (const auto& [number, code] : codes)
        names.insert(code.shows.begin(), code.shows.end());
    for (unsigned number = first; number <= last; ++number) {
        const Code* code = find(codes, number);
        const auto event = make(number).decode();
        EXPECT_EQ(shown(utf8(event->getBody()), names), code ? code->shows : Names{}) << number;
        EXPECT_THAT(utf8(event->getSummary()), EndsWith(code ? code->text : "")) << number;
    }
}

// ---- data-path modules -------------------------------------------------------------------------

struct Class {
    unsigned number;
    const char* title;
    std::string start; // of the text of a code without one: then comes what the code means
    const char* codes;
};

// The data area counts its bytes, so that values tell places.
RecordBuilder datapath(unsigned source, unsigned eventClass, unsigned code) {
    return RecordBuilder(source, 1).u32s(0, {eventClass, code, 0, 77, 48}).counted(20, 48);
}
// All codes that a class may have, and some that none has.
std::vector<unsigned> numbers() {
    std::vector<unsigned> all{0x80000000};
    for (unsigned first : {0u, 500u, 1000u})
        for (unsigned i = 0; i < 34; ++i)
            all.push_back(first + i);
    return all;
}

// Every class with its title, and every code in it with its text and structures. Returns how many
// codes are listed.
std::size_t checkClasses(unsigned source, const std::vector<Class>& classes,
                         const Aliases& tells = {}, const Codes& meanings = {}) {
    const SuppressTrace quiet;
    std::size_t listed = 0;
    std::set<std::string> names;
    for (const Class& c : classes)
        for (const auto& [number, code] : parse(c.codes)) {
            names.insert(code.shows.begin(), code.shows.end());
            ++listed;
        }
    for (const Class& c : classes) {
        const Codes codes = parse(c.codes);
        for (unsigned number : numbers()) {
            const Code* code = find(codes, number);
            const auto event = datapath(source, c.number, number).decode();
            const std::string body = utf8(event->getBody());
            EXPECT_EQ(utf8(event->getEventID()), c.title);
            EXPECT_EQ(shown(body, names, tells), code ? code->shows : Names{}) << number;
            const std::size_t at = body.find("<Request_Type>");
            const std::string rest = body.substr(std::min(at, body.size()));
            const std::string text = !code                ? ""
                                     : code->text.empty() ? c.start + meanings.at(number).text
                                                          : code->text;
            const std::string type = code ? "<Request_Type>" + text + "</Request_Type>" : "";
            EXPECT_THAT(rest, StartsWith(type));
            EXPECT_EQ(rest.size() <= type.size() + 1, !code || code->shows.empty()) << text;
            // The file is its event's summary; drive errors tell the drive in theirs.
            if (!code || (code->shows != Names{"File"} && code->shows != Names{"Drive"})) {
                EXPECT_EQ(utf8(event->getSummary()), text);
            }
        }
    }
    return listed;
}

TEST(Mapping, IoManager) {
    // clang-format off
    const Aliases tells{ // named with the place in the data area if that is not 0
        {"BCD", "bcd_btsn=673786411"},              {"DIB", "Device=1"},
        {"DLM", "dlm_flags=0x00000001"},            {"DLM24", "dlm_flags=0x00000019"},
        {"DRP", "Drive_Number=471670303"},          {"FER", "fer_volume_index=0x00000001"},
        {"ISURP", "isurp_opcode=0x00000001"},       {"Interrupt", "Interrupt=0x00010203"},
        {"LWSEM", "lwsem_valid_bit=0x00010203"},    {"MMSG", "mmsg_length=0x00000001"},
        {"MSA", "msa_full_hi_level=0x00000001"},    {"Message", "Message=0x00010203"},
        {"NDFE", "ndfe_flags=0x00000001"},          {"RBT", "rbt_btsn=471670303"},
        {"RCD", "rcd_cache_index=0"},               {"SGT", "sgt_address=0x00010203"},
        {"SGT28", "sgt_address=0x1C1D1E1F"},        {"SGT40", "sgt_address=0x28292A2B"},
        {"VBGT", "BTSN=66051"},                     {"VT", "vt_common_flags=0x00010203"},
        {"VT28", "vt_common_flags=0x1C1D1E1F"},     {"VT40", "vt_common_flags=0x28292A2B"},
        {"Volume", "Volume_Number=0x00010203"},     {"Drive", "Drive=66051"},
        {"File", "File="},
    };
    // clang-format on
    const Codes meanings = parse(
        "1 MQX Event; 3 Unrecognized Volume Type; 4 ENOMEM; 5 Extent Search Error;"
        "6 Uninit Listhead; 7 Overflow; 8 Empty Buffer; 9 Unexpected Interrupt;"
        "10 Unexpected Message Type; 11 Unexpected Error; 12 VLBN Error; 13 Invalid Param;"
        "14 Virtualize Error; 16 DLM Search Error; 17 Table Invalid Param;"
        "18 Invalid Parity Flag; 19 Table Error; 20 Highwater Error; 22 Translate Error;"
        "24 Drive Load Error; 25 Invalid ISURP; 26 Invalid DRP; 27 Invalid MMSG; 28 Invalid VT;"
        "29 Invalid RCD; 30 Invalid BCD; 31 Invalid RBT; 32 MSA Event; 505 Miscompare;"
        "506 Task Error; 507 Invalid BTSN; 512 Medium Error Repaired; 517 Forced Error Detected;"
        "1001 Task Started; 1002 Task Completed");
    // clang-format off
    const std::vector<Class> classes = {
        {1, "I/O Manager Event", "Manager ",
         "10 +Message; 32 +MSA; 516 +DRP DRP Detected Error Status; 26 +DRP; 1 +LWSEM;"
         "9 +Interrupt"},
        {2, "Rebuild Task Event", "Rebuild ",
         "26 +DRP; 5 +VT; 11; 3 +VT Rebuild Unregonized Volume Type; 506 +Volume; 1001 +Volume;"
         "1002 +Volume; 512 +DRP"},
        {3, "Reconfigure Task Event", "Reconfig ",
         "25 +ISURP; 3 +VT; 4 Reconfig Enomem; 5 +DRP+VT40; 11; 12; 20 +VT; 26 +DRP; 506 +Volume;"
         "512 +DRP; 517 +DLM; 1001 +Volume; 1002 +Volume"},
        {4, "Bad Block Scan Task Event", "Bbscan ",
         "11; 4 Bbscan Enomem; 3 +VT; 5 +DRP+VT40;"
         "512 +DRP Bad Block Scan Scan Medium Error Repaired; 506 +Volume; 1001 +Volume;"
         "1002 +Volume"},
        {5, "XOR Engine Event", "XOE ", "7; 8; 1 +LWSEM Manager MQX Event"},
        {6, "Drive Error", "Error Recovery ",
         "22; 5 +DRP+VT40; 3 +VT; 12 +DRP+VT40 Error Recovery Extent VLBN Error; 13;"
         "501 +Drive Fatal Drive Error; 26 +DRP; 510 +VT Volume State Transition; 512 +DRP"},
        {7, "VMH Task Event", "Metadata ",
         "21 Metadata Max Volumes Reached; 1 +LWSEM; 2 +MMSG Metadata Invalid MMSG; 3 +VT;"
         "4 Metadata Enomem; 11; 13; 23 Metadata MPU Metadata Invalid; 25 +ISURP; 26 +DRP;"
         "501 +DIB Metadata Device Error; 502 Metadata VRE Database Not Found;"
         "508 Drives not found for metadata request"},
        {8, "ISURP ProcessEvent", "ISURPPROC ", "3 +VT; 1 +LWSEM; 25 +ISURP"},
        {9, "DRP Process Event", "DRPPROC ", "26 +DRP"},
        {10, "Background Task Event", "BG ", "1 +LWSEM; 25 +ISURP"},
        {11, "Database Event", "Database ", "6; 4; 7; 13"},
        {12, "ISR Event", "ISR ", "7; 1 ISR installation failure; 8; 9 +Interrupt"},
        {13, "Startup Task Event", "Startup ", "1 Startup MQX Error"},
        {14, "Storage Virtualization Event", "SV ",
         "8 +ISURP+SGT28; 11; 12 +VT; 13; 14 +ISURP; 24; 25 +ISURP"},
        {15, "Diskline Metadata Event", "DLM ",
         "26 +DRP; 514 +DLM DLM Copy Mistmatch Detected;"
         "515 +DLM DLM Search Marker Mismatch Detected; 513 +DLM DLM Search CRC Error Detected;"
         "12 +DRP+SGT40 DLM Extent VLBN Error; 16 +DLM DLM Search Error"},
        {16, "CRC Initialize Task Event", "CRCINIT ",
         "26 +DRP; 517 +DLM; 1001 +Volume; 1002 +Volume; 506 +Volume; 512 +DRP; 5 +DRP+VT40; 11;"
         "25 +ISURP; 3 +VT; 4"},
        {17, "Parity Volume Event", "Parity ",
         "1 +LWSEM; 3 +VT; 4; 5 +VT; 11; 13; 17 +ISURP+SGT28; 18; 19 Parity Build Table Error;"
         "25 +ISURP; 26 +DRP"},
        {18, "Parity Initialize Task Event", "Parity Init ",
         "506 +Volume; 11; 4; 19 +ISURP+SGT28; 25 +ISURP; 517 +DLM; 512 +DRP; 1001 +Volume;"
         "1002 +Volume"},
        {19, "Parity Error Task Event", "Parity Error ",
         "12 +ISURP+VT28 Parity Error Search VLBN Error; 19 +ISURP+SGT28;"
         "511 +DRP Parity Error Medium Error Unrepairable; 512 +DRP; 13; 4; 1 +LWSEM; 11; 5 +VT"},
        {20, "Parity Scan Task Event", "Parity Scan ",
         "506 +Volume; 19 +ISURP+SGT28; 25 +ISURP; 505 +ISURP; 4; 11;"
         "518 +NDFE Parity Scan Forced Error Detected; 512 +DRP; 517 +DLM; 1001 +Volume;"
         "1002 +Volume"},
        {21, "Parity Rebuild Task Event", "Parity Rebuild ",
         "25 +ISURP; 11; 4; 16; 19 +ISURP+SGT28; 517 +DLM; 512 +ISURP; 506 +Volume;"
         "1001 +Volume; 1002 +Volume"},
        {22, "Micro Rebuild Task Event", "Micro Rebuild ",
         "19 +ISURP+SGT28; 3 +VT; 4; 5 +VT; 11; 13; 16; 25 +ISURP; 26 +DRP; 506 +Volume;"
         "512 +DRP; 517 +DLM; 1001 +Volume; 1002 +Volume"},
        {23, "Volume Initialize Task Event", "Volume Init ",
         "503 Volume Init Max BG Tasks; 3 +VT; 506 +Volume"},
        {24, "Management Message Event", "MMSG ",
         "13; 1 +LWSEM; 5 +VT; 27 +MMSG; 26 +DRP; 1003 +VBGT BG Change of State MMSG"},
        {25, "Redundant Controller Process Event", "RCP ",
         "4; 19 +ISURP RCP Build Parity Table Error; 25 +ISURP; 28 +VT; 29 +RCD; 30 +BCD"},
        {26, "Forced Error Event", "",
         "509 +FER+DLM24 Force Error Created; 511 +DRP Medium Error Unrepairable;"
         "517 +DRP Force Error Detected; 15 +VT Force Error Failed to be Created;"
         "501 +DIB Device Error: Max FEs Reached; * Force Error Unhandled Event"},
        {27, "Resource Carving Event", "", "* +SGT Carve Issue"},
        {28, "Background System Task Event", "BGSYS ",
         "28 +VT; 11; 1 +LWSEM; 4; 13; 25 +ISURP; 31 +RBT; 29 +RCD; 30 +BCD;"
         "503 BGSYS MAX Background Tasks; 507"},
        {29, "Macro Task Event", "", "* +LWSEM Macro MQX Event"},
        {30, "EVL Event", "", "* EVL Error"},
        {31, "Resource Assert Event", "", "* +File ASSERT Error"},
        {32, "Unknown Event", "", "* MATH Error"},
        {33, "Drive Error", "",
         "519 +Drive Double Drive Exception; 501 +Drive Fatal Drive Error;"
         "520 +Drive Drive Exception"},
        {0, "Unknown Event", "", ""},
        {34, "Unknown Event", "", ""},
        {0x80000001, "Unknown Event", "", ""},
    };
    // clang-format on
    EXPECT_EQ(checkClasses(5, classes, tells, meanings), 203u);
}

TEST(Mapping, MessageInterruptProcessor) {
    // clang-format off
    const std::vector<Class> classes = {
        {1, "MIP Task Event", "",
         "1 +lwsem_valid_bit MIP8P MQX Event; 3 +Interrupt MIP8P Unexpected Interrupt;"
         "4 +QMIR MIP8P QMIR Event; 5 +Message MIP8P Unexpected Message Type;"
         "6 MIP8P Unexpected Error Event; 12 MIP8P Invalid ARC Number;"
         "13 MIP8P Rvl_MPU MBOX Event; 14 +msa_full_hi_level MIP8P MSA Event;"
         "15 MIP8P ARC found halted; 16 MIP8P ARC found hung; * +Line=361 Unknown Message ID"},
        {3, "MIP ISR Event", "",
         "1 +lwsem_valid_bit Proxy MQX Event; 3 +Interrupt ISR Unexpected Interrupt;"
         "7 +Interrupt ISR Installation Failed; 8 ISR Overflow; 24 MIP Ring Buffer Overflow;"
         "25 MIP Default Interreupt Handler Error; * +Line=479 Unknown Message ID"},
        {4, "MIP Startup Task Event", "",
         "1001 MIP8P Starting ARCs; 1 MIP8P Startup MQX Error; 1002 MIP8P ARCs started;"
         "* +Line=526 Unknown Message ID"},
        {6, "MIP Management Message Event", "",
         "10 MMSG Invalid Param; 1 +lwsem_valid_bit MMSG MQX Event;"
         "11 +mmsg_length MMSG Invalid MMSG; * +Line=580 Unknown Message ID"},
        {8, "MIP EVL Event", "", "* EVL Error"},
        {9, "MIP Resource Assert Event", "", "* +File ASSERT Error"},
        {12, "MIP DMA Event", "",
         "10 Database Invalid Param; 14 +msa_full_hi_level MIP8P MSA Event;"
         "502 +INT_STAT__ MIP8P p32 Xcore Interrupt; 1 +lwsem_valid_bit DMA MQX Event;"
         "3 +INT_STAT__ MIP8P Unexpected Interrupt; * +Line=649 Unknown Message ID"},
        {13, "MIP Bugcheck Event", "",
         "22 +FIFO_Overflow Error: Fatal MSA queue event;"
         "21 +ARC_Number Error: Invalid BUG-CHECK Parameters; 23 +ARC_ID Error: Fatal IRQ event;"
         "* +Line=885 Unknown Message ID"},
        {7, "MIP Redundant Controller Process Event", "", "* +Line=262 Unknown Event Type"},
        {0, "MIP Unknown Event", "", "* +Line=262 Unknown Event Type"},
        {5, "MIP Unknown Event", "", "* +Line=262 Unknown Event Type"},
        {14, "MIP Unknown Event", "", "* +Line=262 Unknown Event Type"},
        {0x80000001, "MIP Unknown Event", "", "* +Line=262 Unknown Event Type"},
    };
    // clang-format on
    checkClasses(7, classes);
}

// ---- device manager ----------------------------------------------------------------------------

TEST(Mapping, DeviceManagerVersion2) { // hundreds: the event type
    check(
        "101 +ID_Select+Process_Flags; 102-110 +PCI_Error_Code+Process_Flags;"
        "201,202,205,206 +Process_Flags; 203,204,207,208,210 +Drive_CMD+Process_Flags; 209 "
        "+Async_Data+Process_Flags;"
        "301,302,342 +Process_Flags , Drive 1; 304 +Process_Flags , Drive 1, Status 2;"
        "303,321 +Semaphore_Valid+Process_Flags , Semaphore Valid 0x00000002, Semaphore Value "
        "0x00000003;"
        "305 +Hardware_Configuration+Process_Flags , Drive 1, Hardware Configuration 0x00000002;"
        "306 +PCIX_Interrupt_Status+Process_Flags , Drive 1, PCIX Interrupt Status 0x00000002;"
        "307,329,330 +Bad_Address+Process_Flags , Drive 1, Bad Address 0x00000002;"
        "308-311,324-328,331,334 +DRIVE_CMD_Flink+Process_Flags , Drive 1, Status 11;"
        "312,332 +Asynchronous_Data+Process_Flags , Drive 1, Asynchronous Data 0x00000002;"
        "313 +Device+Process_Flags , Drive 1;"
        "314,315,317,318 +Peripheral_Interrupt_Register+Process_Flags , PIR 0x00000002, QMIR "
        "0x00000003;"
        "316,319,320,322 +MSA_Queue+Process_Flags , Drive 1, MSA Queue 0x00000002; 323 "
        "+DCB_Flink+Process_Flags , Drive 1;"
        "333,335 +Command_Xfer_Count+Process_Flags , Drive 1; 336-341 +Bus+Process_Flags , Drive 1;"
        "343 +Response_Ring_Base_Address+Process_Flags , Drive 1; 344 +Event=2+Process_Flags , "
        "Drive 1, Event 2;"
        "345 +Event_Type+Process_Flags , Drive 1, Event Type 2;"
        "346 +Bugcheck_Information=0x00000002+Process_Flags , Bugcheck Information 0x00000002;"
        "347 +Event_Type+Bugcheck_Information=0x00000003+Process_Flags , Drive 1, Bugcheck "
        "0x00000003",
        0, 410, [](unsigned code) {
            return RecordBuilder(6, 1)
                .version(2)
                .u32s(0, {code / 100, code % 100, 0, 0, 0, 0, 0, 0, 1})
                .words(36, 30);
        });
}

TEST(Mapping, DeviceManagerVersion3) { // hundreds: the event class
    check("101 +Device=8+SAS_Status_Value+Total_Byte_Count+Expander+Adapter;"
          "102 +Device=8+Total_Byte_Count+Expander+Adapter;"
          "103 +Device=8+Milli_Seconds+Total_Byte_Count+Expander+Adapter;"
          "104 +IOC_Status_Value+Total_Byte_Count+Expander+Adapter;"
          "105 +Device=8+IOC_Log_Information+Total_Byte_Count+Expander+Adapter;"
          "115 +Doorbell_Register+Adapter; 116 +Loop_Count+Adapter;"
          "210 +Drive=15+DRP_Transfer_Count=0x00000026+Expander+Adapter;"
          "211 +Drive=15+DRP_Transfer_Count=0x00000029+Expander+Adapter;"
          "212 +Drive=7+Expander+Adapter; 213 +Integrity_Signature+Expander+Adapter;"
          "307 +Link_Speed+Expander+Adapter; 308 +LUN=4+Expander+Adapter;"
          "309 +LU+Expander+Adapter; 400-499 +Module; 500-599 +Line_Number=1;"
          "15,16,215,216,315,316,615,616 +Adapter; * +Expander+Adapter",
          0, 619, [](unsigned code) {
              return RecordBuilder(6, 1).version(3).u32s(0, {code / 100, code % 100}).words(32, 43);
          });
}

// ---- protocols ---------------------------------------------------------------------------------

TEST(Mapping, IscsiKinds) {
    check("1 +Reason+Socket; 2 +Reason+Socket+Target_TCP_Port;"
          "3 +Reason+Socket+Final+Parameter; 4 +Socket+SessionType;"
          "5 +Reason+Socket+Transit; 6 +Reason+Protocol",
          0, 8, [](unsigned kind) {
              return RecordBuilder(22, 3)
                  .words(0, 60)
                  .u16(0, static_cast<std::uint16_t>(kind))
                  .u8(60, 3)
                  .u8(66, 4);
          });
}

TEST(Mapping, IsnsKindsAndTypes) { // tens: the kind
    check("11 +ICS_MESSAGE+isns_control Client_Config Request Message;"
          "21,31 +ICS_MESSAGE+isns_control Client_Config Response Message;"
          "12 +ICS_MESSAGE+isns_status ICS REQ Sent; 22 +ICS_MESSAGE+isns_status ICS RSP Sent;"
          "32 +ICS_MESSAGE+isns_status ICS MSG Sent;"
          "10,13-20,23-30,33-39 +ICS_MESSAGE Unknown ICS message;"
          "70-79 +Arguments; * +Hex Unhandled Event by ISNS Client",
          0, 89, [](unsigned code) {
              return RecordBuilder(31, 0)
                  .words(0, 40)
                  .u32s(4, {code / 10, 3})
                  .u8(32, static_cast<std::uint8_t>(code % 10));
          });
}

TEST(Mapping, EnclosureAdapter) {
    check("1 +Critical_Error; 2 +socketFdMSM; 3-4 +Buffer_Data; 5 +Enclosure_Type;"
          "6 +Power_Supply_Status; 7 +Fan_Fault_Status; 8 +Temperature_Event;"
          "9 +Current_Alarm_State; 10 +Information",
          0, 12, [](unsigned id) { return RecordBuilder(33, id).words(0, 100, 7); });
}

// ---- management --------------------------------------------------------------------------------

TEST(Mapping, SystemConfiguration) {
    check("2000 +Text; 2005 +Text+Hex; 2010,2012 +ShMem_Key Shared Memory Event;"
          "2011 +Lock_Classes+Text; 2013 +OpCode_Protocol+Text; 2015 +Request_Opcode+Text; 2016 "
          "+Request_Handle+Text;"
          "2017 +Delay_seconds+Text; 2018 +TSS_RdLocks+Text;"
          "2019 +cpmControlFileFd Persistent Memory Event; 2020 +Text+Persistent_Data_Virginity;"
          "* +Hex ***UNKNOWN EventID***",
          1998, 2022, [](unsigned code) { return RecordBuilder(23, code).words(0, 200); });
}

TEST(Mapping, NetworkConfiguration) {
    check("1000-1002 +Text; 1003 +Text+Hex Informational Text and Hex Dump Data;"
          "1021-1025 +OpCode_Protocol+Text; 1026 +Request_Handle+Text; 1030 +Text;"
          "1040 +LAG_Port=1 UP; 1041 +LAG_Port=1 DOWN;"
          "1051 +ClassName=NetworkPortStats+Rx_octets; 1052 +ClassName=NetworkLagStats+Rx_octets;"
          "1053 +ClassName=NetworkRvlStats+PrxIpDiscards;"
          "1054 +ClassName=NetworkOutbandStats+IfIndex;"
          "1055 +ClassName=NetworkTcpStats+TcpRtoMin;"
          "1056 +ClassName=NetworkConnectionStats+TcpSockId; * +Hex ***UNKNOWN EventID***",
          998, 1060, [](unsigned code) { return RecordBuilder(24, code).words(0, 100); });
}

TEST(Mapping, SmisProvider) {
    check("2000 +Text; 2005 +Text+Hex; 2013 +OpCode_Protocol+Text; 2018 +Hex+ClassId+Text;"
          "2020 +Text+k=v; * +Hex ***UNKNOWN SMIS EventID***",
          1998, 2022, [](unsigned code) {
              return RecordBuilder(29, code).words(0, 8).text(32, "t").bytes(34, "k=v");
          });
}

TEST(Mapping, StartUp) {
    check("1 +Text1; 2 +Message_length+general_use3; 3 +Message_length; 4 +Exception;"
          "100 +BASE_ADDRESS; 101 +SP; * +Hex Unhandled Event by STARTUPMP",
          0, 103, [](unsigned code) { return RecordBuilder(18, code).text(0, "message"); });
}

// ---- codes that no table has -------------------------------------------------------------------

TEST(Mapping, UnknownCodesAreTraced) {
    const auto sata = [](unsigned version, std::uint32_t first, std::uint32_t second) {
        return RecordBuilder(6, 1).version(version).u32s(0, {first, second});
    };
    const auto isns = [](std::uint32_t kind, std::uint32_t identifier) {
        return RecordBuilder(31, 0).u32s(4, {kind, 2}).u32s(24, {identifier, 0, 0x05000000});
    };
    const struct {
        RecordBuilder record;
        const char* where;
        const char* traced; // empty: a known code
    } cases[] = {
        {datapath(5, 34, 1), "IOMGR8P_Event:0 ", "Unknown Event_Type: 34"},
        {datapath(5, 0, 1), "IOMGR8P_Event:0 ", "Unknown Event_Type: 0"},
        {datapath(5, 33, 2), "IOMGR8P_Event:0 ", "Unknown Event_Number: 2"},
        {datapath(5, 32, 2), "", ""},
        {datapath(7, 7, 1), "MIP8P_Event:262 ", "Unknown Event Type: 7"},
        {datapath(7, 0, 1), "MIP8P_Event:262 ", "Unknown Event Type: 0"},
        {datapath(7, 14, 1), "MIP8P_Event:262 ", "Unknown Event Type: 14"},
        {datapath(7, 1, 99), "MIP8P_Event:361 ", "Unknown Message ID: 99"},
        {datapath(7, 3, 2), "MIP8P_Event:479 ", "Unknown Message ID: 2"},
        {datapath(7, 13, 24), "MIP8P_Event:885 ", "Unknown Message ID: 24"},
        {datapath(7, 9, 99), "", ""},
        {sata(1, 0, 310), "SATA8P_Event:0 ", "Unknown Event_Number: 310"},
        {sata(2, 4, 1), "SATA8P_Event:0 ", "Invalid Event Type (0x00000004)"},
        {sata(2, 3, 48), "SATA8P_Event:0 ", "Invalid Event (0x00000030)"},
        {sata(3, 2, 18), "SATA8P_Event:0 ", "Unknown data (class 2, identifier 18)"},
        {RecordBuilder(22, 3).u16(0, 9), "ISCSIMP_Event:0 ", "Unknown payload kind: 9"},
        {isns(9, 1), "ISNSC_Event:0 ", "Unhandled Event by ISNS Client: 9"},
        {isns(6, 1), "ISNSC_Event:0 ", "Unhandled Event by ISNS Client: 6"},
        {isns(2, 1), "ISNSC_Event:0 ", "Unknown ics_type: 5"},
        {isns(7, 8), "ISNSC_Event:0 ", "Unknown text_id: 8"},
        {isns(7, 1), "", ""},
    };
    for (const auto& c : cases) {
        const CaptureTrace trace;
        c.record.decode();
        std::vector<std::string> told;
        for (const std::string& line : trace.lines())
            if (line.find("Length=0x") == line.npos && line.find("setEventID") == line.npos)
                told.push_back(line);
        ASSERT_EQ(told.size(), *c.traced != '\0') << c.where << c.traced;
        if (*c.traced != '\0') {
            EXPECT_THAT(told[0], testing::AllOf(StartsWith(c.where),
                                                EndsWith(std::string(": ") + c.traced)));
        }
    }
}

} // namespace
} // namespace Pegasus::test
