#include "decoders/protocol/ES_ADAPTERMP_Event.h"
#include "tests/RecordBuilder.h"

#include <gmock/gmock.h>

namespace Pegasus::test {
namespace {

RecordBuilder event(unsigned id) {
    return RecordBuilder(33, id);
}
TEST(ES_ADAPTERMP_Event, NamesEventsByTheirId) {
    const SuppressTrace quiet;
    const struct {
        unsigned id;
        const char* title;
    } cases[] = {
        {1, "ES Adapter Bug Check Error Message"},
        {2, "ES Adapter Bug Check Information"},
        {3, "ES Adapter Bug Check Message Buffer Data"},
        {4, "ES Adapter Bug Check Workspace Buffer Data"},
        {5, "ES Adapter Drive Fault LED Event"},
        {6, "ES Adapter Power Supply Status Event"},
        {7, "ES Adapter Fan Fault Status Event"},
        {8, "ES Adapter Temperature Sensor Event"},
        {9, "ES Adapter Alarm Status Event"},
        {10, "ES Adapter Information Event"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(event(c.id).title(), c.title);
    for (unsigned id : {1u, 2u, 3u, 4u}) // nothing to tell but the title
        EXPECT_EQ(event(id).summary(), "");
}

TEST(ES_ADAPTERMP_Event, NamesUnknownIds) {
    const struct {
        unsigned id;
        const char* title;
    } cases[] = {{0, "Unknown EventID: 0x00000000"},
                 {11, "Unknown EventID: 0x0000000b"},
                 {0xABCD, "Unknown EventID: 0x0000abcd"}};
    for (const auto& c : cases) {
        const CaptureTrace trace;
        const auto decoded = event(c.id).u32(0, 1).decode();
        EXPECT_EQ(utf8(decoded->getEventID()), c.title);
        EXPECT_EQ(utf8(decoded->getSummary()), "Unhandled Event by ES_ADAPTERMP");
        EXPECT_EQ(utf8(decoded->getBody()), "Unhandled Event by ES_ADAPTERMP");
        ASSERT_EQ(trace.lines().size(), 1u);
        EXPECT_THAT(trace.lines()[0],
                    AllOf(testing::StartsWith("ES_ADAPTERMP_Event:"), testing::EndsWith(c.title)));
    }
    const ES_ADAPTERMP_Event none(nullptr, 0);
    EXPECT_EQ(none.getEventID().size() + none.getBody().size() + none.getSummary().size(), 0u);
}

TEST(ES_ADAPTERMP_Event, ShowsBugcheckMessages) {
    const SuppressTrace quiet;
    RecordBuilder builder = event(1);
    builder.u16(0, 65535).text(2, "esa_i2c.c").text(12, "write").u32(32, 0xFFFFFFFE);
    builder.text(36, "bus=1 & <lost>");
    EXPECT_EQ(builder.body(), "<Critical_Error>-2</Critical_Error> <File>esa_i2c.c</File> "
                              "<Function>write</Function> <Line>65535</Line> "
                              "<Error_Message>bus: 1 ? ?lost?</Error_Message> ");
    EXPECT_EQ(builder.summary(), "bus=1 & <lost>");
    builder.bytes(2, std::string(30, 'f'));
    EXPECT_THAT(builder.body(), testing::HasSubstr("<File>" + std::string(30, 'f') +
                                                   "</File> <Function></Function> "));
}

TEST(ES_ADAPTERMP_Event, DumpsBuffers) {
    const SuppressTrace quiet;
    for (unsigned id : {3u, 4u}) {
        EXPECT_EQ(event(id).bytes(0, "\xDE\xAD\x01").body(), "<Buffer_Data>DEAD01</Buffer_Data> ");
        EXPECT_EQ(event(id).bytes(0, "\xDE\xAD\x01").payloadLength(2).body(),
                  "<Buffer_Data>DEAD</Buffer_Data> ");
        EXPECT_EQ(event(id).body(), "<Buffer_Data></Buffer_Data> ");
    }
    EXPECT_EQ(event(4).payloadLength(65535).body().size(), 65535 * 2 + 28u);
}

TEST(ES_ADAPTERMP_Event, ShowsTheStateInItsOrder) {
    const SuppressTrace quiet;
    RecordBuilder builder = event(2);
    for (std::uint32_t at = 0; at < 268; at += 4)
        builder.u32(at, 0x0A000000 + at); // 167772160 + at
    builder.u32(0, 0xFFFFFFFF).u32(208, 0xFFFFFFF6).bytes(268, "/tmp/esa" + std::string(100, 'x'));
    builder.bytes(268 + 108, "behind");
    EXPECT_EQ(
        builder.body(),
        "<Event_Id>-1</Event_Id> <socketFdMSM>167772164</socketFdMSM> "
        "<socketAddressMSM_sun_path>/tmp/esa" +
            std::string(100, 'x') +
            "</socketAddressMSM_sun_path> <i2cFileFd>167772168</i2cFileFd> "
            "<enclosureType>167772172</enclosureType> "
            "<elementTypeMaxNumber>167772176</elementTypeMaxNumber> "
            "<deviceMaxNumber>167772180</deviceMaxNumber> "
            "<powerSupplyMaxNumber>167772184</powerSupplyMaxNumber> "
            "<coolingMaxNumber>167772188</coolingMaxNumber> "
            "<temperatureSensorMaxNumber>167772192</temperatureSensorMaxNumber> "
            "<audibleAlarmMaxNumber>167772196</audibleAlarmMaxNumber> "
            "<pageCodeInRecentSndDiagCmd>167772200</pageCodeInRecentSndDiagCmd> "
            "<sesTypeDescriptorList>0A00002C</sesTypeDescriptorList> "
            "<sesTypeDescriptorList>0A000030</sesTypeDescriptorList> "
            "<sesTypeDescriptorList>0A000034</sesTypeDescriptorList> "
            "<sesTypeDescriptorList>0A000038</sesTypeDescriptorList> "
            "<sesTypeDescriptorList>0A00003C</sesTypeDescriptorList> "
            "<deviceControlOverall>0A000040</deviceControlOverall> "
            "<deviceControl>0A000044 0A000048 0A00004C 0A000050 0A000054</deviceControl> "
            "<deviceStatusOverall>0A000058</deviceStatusOverall> "
            "<deviceStatus>0A00005C 0A000060 0A000064 0A000068 0A00006C</deviceStatus> "
            "<driveFaultLedStatus0>0xa000070</driveFaultLedStatus0> "
            "<driveFaultLedStatus1>0xa000074</driveFaultLedStatus1> "
            "<powerSupplyControlOverall>0A000078</powerSupplyControlOverall> "
            "<powerSupplyControl>0A00007C 0A000080</powerSupplyControl> "
            "<powerSupplyStatusOverall>0A000084</powerSupplyStatusOverall> "
            "<powerSupplyStatus>0A000088 0A00008C</powerSupplyStatus> "
            "<internalPowerSupplyStatus>0xa000090</internalPowerSupplyStatus> "
            "<coolingControlOverall>0A000094</coolingControlOverall> "
            "<coolingControl>0A000098 0A00009C</coolingControl> "
            "<coolingStatusOverall>0A0000A0</coolingStatusOverall> "
            "<coolingStatus>0A0000A4 0A0000A8</coolingStatus> "
            "<coolingOnOff>0A0000AC 0A0000B0</coolingOnOff> "
            "<fanFaultStatus>0xa0000b4</fanFaultStatus> "
            "<temperatureSensor>[0], 167772344</temperatureSensor> "
            "<temperatureSensor>[1], 167772348</temperatureSensor> "
            "<temperatureSensor>[2], 167772352</temperatureSensor> "
            "<temperatureSensor>[3], 167772356</temperatureSensor> "
            "<temperatureSensor>[4], 167772360</temperatureSensor> "
            "<temperatureSensor>[5], 167772364</temperatureSensor> "
            "<temperatureSensor>[6], -10</temperatureSensor> "
            "<temperatureReportStatus>0xa0000d4</temperatureReportStatus> "
            "<audibleAlarmControlOverall>0A0000D8</audibleAlarmControlOverall> "
            "<audibleAlarmControl>0A0000DC</audibleAlarmControl> "
            "<audibleAlarmStatusOverall>0A0000E0</audibleAlarmStatusOverall> "
            "<audibleAlarmStatus>0A0000E4</audibleAlarmStatus> <alarmState>167772392</alarmState> "
            "<compositeFaultStatus>0xa0000ec</compositeFaultStatus> <esaDebug>167772400</esaDebug> "
            "<vsc055GPD>0xa0000f4</vsc055GPD> <vsc055DDP>0xa0000f8</vsc055DDP> "
            "<vsc055FSC>0xa0000fc</vsc055FSC> <vsc055PWMC>0xa000100</vsc055PWMC> "
            "<selectTimeout_sec>167772420</selectTimeout_sec> "
            "<pollTimeout_sec>167772424</pollTimeout_sec> ");
}

TEST(ES_ADAPTERMP_Event, ShowsLedsFansAndPowerSupplies) {
    const SuppressTrace quiet;
    const RecordBuilder leds = event(5).u32s(0, {6, 0x80000002, 0x80000001});
    EXPECT_EQ(leds.body(), "<Enclosure_Type>Enclosure Type 6 (W83792AD)</Enclosure_Type> "
                           "<Drive_Fault_LED>Drive [1] Fault LED is ON</Drive_Fault_LED> "
                           "<Drive_Fault_LED>Drive [31] Fault LED is ON</Drive_Fault_LED> "
                           "<Drive_Fault_LED>Drive [32] Fault LED is ON</Drive_Fault_LED> "
                           "<Drive_Fault_LED>Drive [63] Fault LED is ON</Drive_Fault_LED> ");
    EXPECT_EQ(leds.summary(), "Drive Fault LEDs ON: 1, 31, 32, 63");
    EXPECT_EQ(event(5).u32(0, 0).body(), "<Enclosure_Type>No Enclosure</Enclosure_Type> ");
    EXPECT_EQ(event(5).u32(0, 0).summary(), "No Drive Fault LED is ON");
    EXPECT_EQ(event(5).u32(0, 19).body(),
              "<Enclosure_Type>Enclosure Type 19 (VSC055)</Enclosure_Type> ");
    for (std::uint32_t code : {20u, 0xFFFFFFFFu})
        EXPECT_EQ(event(5).u32(0, code).body(),
                  "<Enclosure_Type>Unrecognized Enclosure</Enclosure_Type> ");

    const RecordBuilder fans = event(7).u32(0, 0x80000004);
    EXPECT_EQ(fans.body(), "<Fan_Fault_Status>Fan [2] has Fault</Fan_Fault_Status> "
                           "<Fan_Fault_Status>Fan [31] has Fault</Fan_Fault_Status> ");
    EXPECT_EQ(fans.summary(), "Fans with Fault: 2, 31");
    EXPECT_EQ(event(7).u32(0, 0).body(), "");
    EXPECT_EQ(event(7).u32(0, 0).summary(), "No Fan has Fault");

    EXPECT_EQ(event(6).u32(0, 0).body(),
              "<Power_Supply_Status>Power AC Redundancy OK</Power_Supply_Status> ");
    EXPECT_EQ(event(6).u32(0, 1).summary(), "Power AC Redundancy Lost");
    EXPECT_EQ(event(6).u32(0, 2).summary(), "Unknown (2)");
}

TEST(ES_ADAPTERMP_Event, ShowsTemperaturesAndAlarms) {
    const SuppressTrace quiet;
    const RecordBuilder hot = event(8).u32s(0, {5, 4, 56});
    EXPECT_EQ(hot.body(),
              "<Temperature_Event>Temperature Over 55 Degrees Celsius Event</Temperature_Event> "
              "<Sensor_Position>Left Hand Side</Sensor_Position> "
              "<Current_Temperature>56 degrees Celsius</Current_Temperature> ");
    EXPECT_EQ(hot.summary(), "Temperature Over 55 Degrees Celsius Event");
    EXPECT_EQ(event(8).u32s(0, {6, 7, 0xFFFFFFFB}).body(),
              "<Temperature_Event>Unrecognized Temperature Event</Temperature_Event> "
              "<Sensor_Position>Unknown (7)</Sensor_Position> "
              "<Current_Temperature>-5 degrees Celsius</Current_Temperature> ");
    const struct {
        std::uint32_t code;
        const char* state;
    } alarms[] = {{0, "Idle State"},
                  {4, "Critical State"},
                  {5, "The 5th Alarm State"},
                  {7, "The 7th Alarm State"},
                  {8, "Unknown (8)"}};
    for (const auto& c : alarms) {
        const std::string state(c.state);
        EXPECT_EQ(event(9).u32(0, c.code).body(),
                  "<Current_Alarm_State>" + state + "</Current_Alarm_State> ");
        EXPECT_EQ(event(9).u32(0, c.code).summary(), state);
    }
}

TEST(ES_ADAPTERMP_Event, ShowsInformation) {
    const SuppressTrace quiet;
    const struct {
        std::uint32_t code;
        const char* text;
    } cases[] = {
        {0, "ESA detects I2C Bus Success."},
        {1, "ESA requests an orderly shutdown."},
        {5, "ESA detects an I2C Bus Success with VSC055 device."},
        {7, "The Personality Toolkit information is not available."},
        {8, "No Enclosure Services Information. Enclosure Services will not function during the "
            "software lifetime."},
        {11, "Unrecognized information"},
        {0xFFFFFFFF, "Unrecognized information"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(event(10).u32(0, c.code).body(),
                  "<Information>" + std::string(c.text) + "</Information> ");
        EXPECT_EQ(event(10).u32(0, c.code).summary(), c.text);
    }
    const RecordBuilder report = event(10).u32s(0, {9, 2, 3, 17, 24, 0xFFFFFF80});
    EXPECT_EQ(
        report.body(),
        "<Information>Auxiliary 2 temperature-3 has 17 invalid readings within 24 hours "
        "since last report. The last invalid reading is -128 degrees Celsius </Information> ");
    EXPECT_EQ(
        report.summary(),
        "Auxiliary 2 temperature-3 has 17 invalid readings within 24 hours since last report. "
        "The last invalid reading is -128 degrees Celsius ");
}

TEST(ES_ADAPTERMP_Event, ShowsReadingsOfAsManyFansAsThereAre) {
    const SuppressTrace quiet;
    RecordBuilder builder = event(10).u32s(0, {10, 0x40A00000, 0x4141999A}); // 5.0, 12.1
    for (std::uint32_t i = 0; i < 18; ++i)
        builder.u32(12 + 4 * i, 100 + i);
    const auto fans = [](unsigned count) {
        std::string text;
        for (unsigned i = 0; i < count; ++i)
            text += "<Fan_Speed>Fan [" + std::to_string(i) + "] has " + std::to_string(100 + i) +
                    " RPM.</Fan_Speed> ";
        return text;
    };
    const struct {
        std::uint32_t count;
        const char* shown;
        unsigned fans;
    } cases[] = {{0, "0", 0}, {3, "3", 3}, {8, "8", 8}, {9, "9", 8}, {0xFFFFFFFF, "-1", 0}};
    for (const auto& c : cases) {
        builder.u32(48, c.count);
        EXPECT_EQ(builder.body(),
                  "<Voltage_5V>5.000000 V</Voltage_5V> <Voltage_12V>12.100000 V</Voltage_12V> " +
                      fans(c.fans) + "<Fan_Speed_Divisor>108</Fan_Speed_Divisor> <Cooling_Number>" +
                      c.shown +
                      "</Cooling_Number> "
                      "<Temperature_Sensor_Number>110</Temperature_Sensor_Number> "
                      "<Overheat_Temperature_Limit>111</Overheat_Temperature_Limit> "
                      "<Fan_PWM_25_To_50_Threshold>112</Fan_PWM_25_To_50_Threshold> "
                      "<Fan_PWM_50_To_75_Threshold>113</Fan_PWM_50_To_75_Threshold> "
                      "<Fan_PWM_75_To_100_Threshold>114</Fan_PWM_75_To_100_Threshold> "
                      "<Fan_PWM_100_To_75_Threshold>115</Fan_PWM_100_To_75_Threshold> "
                      "<Fan_PWM_75_To_50_Threshold>116</Fan_PWM_75_To_50_Threshold> "
                      "<Fan_PWM_50_To_25_Threshold>117</Fan_PWM_50_To_25_Threshold> ");
        EXPECT_EQ(builder.summary(), "5.000000 V, 12.100000 V");
    }
}

} // namespace
} // namespace Pegasus::test
