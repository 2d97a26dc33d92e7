// Tables of the enclosure-services adapter decoder. Offsets are from the start of the event data,
// which begin at record offset 152. Codes count from 0 in the order of their texts.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::esa {

// Nobody wrote the models down: the type, and the chip that watches voltages, fans and
// temperatures.
inline constexpr std::string_view kEnclosureTexts[] = {
    "No Enclosure",
    "Enclosure Type 1 (W83792AD)",
    "Enclosure Type 2 (W83782D)",
    "Enclosure Type 3 (LM75)",
    "Enclosure Type 4 (VSC055)",
    "Enclosure Type 5 (PCA9539)",
    "Enclosure Type 6 (W83792AD)",
    "Enclosure Type 7 (W83782D)",
    "Enclosure Type 8 (LM75)",
    "Enclosure Type 9 (VSC055)",
    "Enclosure Type 10 (PCA9539)",
    "Enclosure Type 11 (W83792AD)",
    "Enclosure Type 12 (W83782D)",
    "Enclosure Type 13 (LM75)",
    "Enclosure Type 14 (VSC055)",
    "Enclosure Type 15 (PCA9539)",
    "Enclosure Type 16 (W83792AD)",
    "Enclosure Type 17 (W83782D)",
    "Enclosure Type 18 (LM75)",
    "Enclosure Type 19 (VSC055)",
    "Unrecognized Enclosure",
};
inline constexpr NameTable kEnclosures = names<kEnclosureTexts>(Fallback::Last);

inline constexpr std::string_view kPowerTexts[] = {
    "Power AC Redundancy OK",
    "Power AC Redundancy Lost",
};
inline constexpr NameTable kPowerStates = names<kPowerTexts>();

inline constexpr std::string_view kTemperatureTexts[] = {
    "Temperature Over 35 Degrees Celsius Event",
    "Temperature Below 35 Degrees Celsius Event",
    "Temperature Over 44 Degrees Celsius Event",
    "Temperature Below 44 Degrees Celsius Event",
    "Temperature Over 45 Degrees Celsius Event",
    "Temperature Over 55 Degrees Celsius Event",
    "Unrecognized Temperature Event",
};
inline constexpr NameTable kTemperatures = names<kTemperatureTexts>(Fallback::Last);

inline constexpr std::string_view kPositionTexts[] = {
    "On-board",       "Auxiliary 1", "Auxiliary 2",     "Auxiliary 3",
    "Left Hand Side", "Middle",      "Right Hand Side",
};
inline constexpr NameTable kPositions = names<kPositionTexts>();

inline constexpr std::string_view kAlarmTexts[] = {
    "Idle State",     "Mute State",          "Remind State",        "Fault State",
    "Critical State", "The 5th Alarm State", "The 6th Alarm State", "The 7th Alarm State",
};
inline constexpr NameTable kAlarms = names<kAlarmTexts>();

inline constexpr std::string_view kInformationTexts[] = {
    "ESA detects I2C Bus Success.",
    "ESA requests an orderly shutdown.",
    "ESA detects an I2C Bus Success with W83792AD device.",
    "ESA detects an I2C Bus Success with W83782D device.",
    "ESA detects an I2C Bus Success with LM75 device.",
    "ESA detects an I2C Bus Success with VSC055 device.",
    "ESA detects an I2C Bus Success with PCA9539 device.",
    "The Personality Toolkit information is not available.",
    ("No Enclosure Services Information. Enclosure Services will not function during the software "
     "lifetime."),
    "Unrecognized information",
};
inline constexpr NameTable kInformations = names<kInformationTexts>(Fallback::Last);

template <class... Values>
constexpr Row assumed(std::string_view tag, std::string_view format, Values... values) {
    return Row(tag, format, values...).assumed();
}

// Bugcheck error message: a location block as the management modules write it, then these.
inline constexpr Row kErrorRows[] = {
    assumed("Critical_Error", "%d", u32(32)),
    Row("File", "%s", text(2, 30)).inferred(),
};
void putFunction(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFunction{
    putFunction,
    "`Function`, the text after the file name's NUL, in the same 32 bytes.",
    {},
    "\1\x0C"
    "esa_i2c.c\0writeByte\0"sv,
    Provenance::Inferred};
inline constexpr unsigned kMessageAt = 36;
inline constexpr Row kMessageRows[] = {
    Row("Line", "%d", u16(0)).inferred(),
    assumed("Error_Message", "%s", text(kMessageAt)),
};
void putBuffer(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kBuffer{putBuffer,
                                     "The payload as `Buffer_Data`.",
                                     {},
                                     "\x02\x00\x00\x1C\x00\x00\x00\x01\x11\x00\x02\x24"sv,
                                     Provenance::Assumed};

// The adapter's state as it is in its memory. SES control and status elements are four bytes
// each, shown as one run of hexadecimal digits.
inline constexpr Row kStateRows[] = {
    assumed("Event_Id", "%d", u32(0)),
    assumed("socketFdMSM", "%d", u32(4)),
    assumed("socketAddressMSM_sun_path", "%s", text(268, 108)),
    assumed("i2cFileFd", "%d", u32(8)),
    assumed("enclosureType", "%d", u32(12)),
    assumed("elementTypeMaxNumber", "%d", u32(16)),
    assumed("deviceMaxNumber", "%d", u32(20)),
    assumed("powerSupplyMaxNumber", "%d", u32(24)),
    assumed("coolingMaxNumber", "%d", u32(28)),
    assumed("temperatureSensorMaxNumber", "%d", u32(32)),
    assumed("audibleAlarmMaxNumber", "%d", u32(36)),
    assumed("pageCodeInRecentSndDiagCmd", "%d", u32(40)),
    assumed("sesTypeDescriptorList", "%08X", u32(44)).repeat(5, 4),
    assumed("deviceControlOverall", "%08X", u32(64)),
    assumed("deviceControl", "%08X %08X %08X %08X %08X", u32(68), u32(72), u32(76), u32(80),
            u32(84)),
    assumed("deviceStatusOverall", "%08X", u32(88)),
    assumed("deviceStatus", "%08X %08X %08X %08X %08X", u32(92), u32(96), u32(100), u32(104),
            u32(108)),
    assumed("driveFaultLedStatus0", "0x%x", u32(112)),
    assumed("driveFaultLedStatus1", "0x%x", u32(116)),
    assumed("powerSupplyControlOverall", "%08X", u32(120)),
    assumed("powerSupplyControl", "%08X %08X", u32(124), u32(128)),
    assumed("powerSupplyStatusOverall", "%08X", u32(132)),
    assumed("powerSupplyStatus", "%08X %08X", u32(136), u32(140)),
    assumed("internalPowerSupplyStatus", "0x%x", u32(144)),
    assumed("coolingControlOverall", "%08X", u32(148)),
    assumed("coolingControl", "%08X %08X", u32(152), u32(156)),
    assumed("coolingStatusOverall", "%08X", u32(160)),
    assumed("coolingStatus", "%08X %08X", u32(164), u32(168)),
    assumed("coolingOnOff", "%08X %08X", u32(172), u32(176)),
    assumed("fanFaultStatus", "0x%x", u32(180)),
    assumed("temperatureSensor", "[%d], %d", index, u32(184)).repeat(7, 4),
    assumed("temperatureReportStatus", "0x%x", u32(212)),
    assumed("audibleAlarmControlOverall", "%08X", u32(216)),
    assumed("audibleAlarmControl", "%08X", u32(220)),
    assumed("audibleAlarmStatusOverall", "%08X", u32(224)),
    assumed("audibleAlarmStatus", "%08X", u32(228)),
    assumed("alarmState", "%d", u32(232)),
    assumed("compositeFaultStatus", "0x%x", u32(236)),
    assumed("esaDebug", "%d", u32(240)),
    assumed("vsc055GPD", "0x%x", u32(244)),
    assumed("vsc055DDP", "0x%x", u32(248)),
    assumed("vsc055FSC", "0x%x", u32(252)),
    assumed("vsc055PWMC", "0x%x", u32(256)),
    assumed("selectTimeout_sec", "%d", u32(260)),
    assumed("pollTimeout_sec", "%d", u32(264)),
};

inline constexpr Row kEnclosureRows[] = {
    assumed("Enclosure_Type", "%s", name(u32(0), kEnclosures)),
};
void putDriveLeds(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kDriveLeds{
    putDriveLeds,
    "One `Drive_Fault_LED` for each bit that is set: bit k of the word at 4 is drive k, of the "
    "word at 8 drive 32 + k. The summary has the numbers: `Drive Fault LEDs ON: 1, 32`, or "
    "`No Drive Fault LED is ON`.",
    {},
    "\0\0\0\x12\0\0\0\1"sv,
    Provenance::Assumed};
inline constexpr Row kPowerRows[] = {
    assumed("Power_Supply_Status", "%s", name(u32(0), kPowerStates)),
};
void putFanFaults(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFanFaults{
    putFanFaults,
    "One `Fan_Fault_Status` for each bit that is set in the word at 0: bit k is fan k. The summary "
    "has the numbers: `Fans with Fault: 0, 2`, or `No Fan has Fault`.",
    {},
    "\0\0\0\5"sv,
    Provenance::Assumed};
inline constexpr Row kTemperatureRows[] = {
    assumed("Temperature_Event", "%s", name(u32(0), kTemperatures)),
    assumed("Sensor_Position", "%s", name(u32(4), kPositions)),
    assumed("Current_Temperature", "%d degrees Celsius", u32(8)),
};
inline constexpr Row kAlarmRows[] = {
    assumed("Current_Alarm_State", "%s", name(u32(0), kAlarms)),
};

inline constexpr Row kInformationRows[] = {
    assumed("Information", "%s", name(u32(0), kInformations)),
};
inline constexpr Row kReportRows[] = {
    assumed("Information",
            "%s temperature-%d has %d invalid readings within %d hours since last report. The last "
            "invalid reading is %d degrees Celsius ",
            name(u32(4), kPositions), u32(8), u32(12), u32(16), u32(20)),
};
inline constexpr Row kVoltageRows[] = {
    assumed("Voltage_5V", "%f V", u32(4)),
    assumed("Voltage_12V", "%f V", u32(8)),
};
inline constexpr Row kVoltageLine = line("%f V, %f V", u32(4), u32(8)).assumed();
inline constexpr unsigned kFanSpeedAt = 12;
inline constexpr unsigned kMaxFans = 8;
inline constexpr unsigned kFanCountAt = 48;
inline constexpr Row kFanRows[] = {
    assumed("Fan_Speed", "Fan [%d] has %d RPM.", index, u32(kFanSpeedAt)).repeat(kMaxFans, 4),
};
void putFanSpeeds(Draft& draft, const Record& record, const RecordView& data);
inline constexpr CustomPiece kFanSpeeds{putFanSpeeds,
                                        "As many `Fan_Speed` as `Cooling_Number` says.",
                                        kFanRows,
                                        {},
                                        Provenance::Assumed};
inline constexpr Row kThresholdRows[] = {
    assumed("Fan_Speed_Divisor", "%d", u32(44)),
    assumed("Cooling_Number", "%d", u32(kFanCountAt)),
    assumed("Temperature_Sensor_Number", "%d", u32(52)),
    assumed("Overheat_Temperature_Limit", "%d", u32(56)),
    assumed("Fan_PWM_25_To_50_Threshold", "%d", u32(60)),
    assumed("Fan_PWM_50_To_75_Threshold", "%d", u32(64)),
    assumed("Fan_PWM_75_To_100_Threshold", "%d", u32(68)),
    assumed("Fan_PWM_100_To_75_Threshold", "%d", u32(72)),
    assumed("Fan_PWM_75_To_50_Threshold", "%d", u32(76)),
    assumed("Fan_PWM_50_To_25_Threshold", "%d", u32(80)),
};

// The summary is what the element says, without its tag.
constexpr Row told(Row element) {
    element.kind = Row::Line;
    return element;
}
// What the number at 0 means was settled by us.
constexpr EventRow information(Codes codes, const Row& summary, Pieces pieces) {
    return {codes, "ES Adapter Information Event", summary, pieces, Provenance::Assumed};
}

inline constexpr EventRow kEventRows[] = {
    // clang-format off
    {anyOf(1), "ES Adapter Bug Check Error Message", told(kMessageRows[1]), {kErrorRows, kFunction, kMessageRows, sample(kMessageAt, "I2C bus is busy\0"sv)}},
    {anyOf(2), "ES Adapter Bug Check Information", {}, {kStateRows}},
    {anyOf(3), "ES Adapter Bug Check Message Buffer Data", {}, {kBuffer}},
    {anyOf(4), "ES Adapter Bug Check Workspace Buffer Data", {}, {kBuffer}},
    {anyOf(5), "ES Adapter Drive Fault LED Event", {}, {kEnclosureRows, custom(kDriveLeds, 4)}},
    {anyOf(6), "ES Adapter Power Supply Status Event", told(kPowerRows[0]), {kPowerRows}},
    {anyOf(7), "ES Adapter Fan Fault Status Event", {}, {kFanFaults}},
    {anyOf(8), "ES Adapter Temperature Sensor Event", told(kTemperatureRows[0]), {kTemperatureRows, sample(0, "\0\0\0\2\0\0\0\5\0\0\0\x2E"sv)}},
    {anyOf(9), "ES Adapter Alarm Status Event", told(kAlarmRows[0]), {kAlarmRows}},
    information(anyOf(10), told(kInformationRows[0]), {kInformationRows}),
    information({10, 9}, told(kReportRows[0]), {kReportRows, sample(4, "\0\0\0\1\0\0\0\2\0\0\0\5\0\0\0\x18\xFF\xFF\xFF\x80"sv)}),
    information({10, 10}, kVoltageLine, {kVoltageRows, kFanSpeeds, kThresholdRows, sample(4, "\x40\xA0\xA3\xD7\x41\x41\x47\xAE"), sample(kFanCountAt, "\0\0\0\4"sv)}), // 5.02 V, 12.08 V, four fans
    // clang-format on
};

inline constexpr EventTable kEvents{
    .rows = kEventRows,
    .major = u16(150),
    .minor = u32(152),
    .note =
        "Title of an event with another id: `Unknown EventID: 0x%08x`. Its summary and body are "
        "`Unhandled Event by ES_ADAPTERMP`.",
};
static_assert(accepted<kEvents>);

inline constexpr const EventTable* kTables[] = {&kEvents};
inline constexpr Module kModule{33, "ES_ADAPTERMP_Event", {}, kTables};

} // namespace Pegasus::mpu::esa
