#include "provider/Mapping.h"

#include "event/MPUEvent.h"
#include "event/TextWriter.h"

#include <charconv>
#include <ctime>
#include <fmt/format.h>

namespace Pegasus::provider {

namespace {

constexpr std::string_view kOrganization = "MPUEvent:";

// CIM_RecordForLog.PerceivedSeverity of an event type, for customers and engineers alike.
std::uint16_t perceivedSeverity(unsigned eventType) {
    switch (eventType % 100) {
    case 1:
        return 2; // Information
    case 2:
        return 3; // Degraded/Warning
    case 3:
        return 5; // Major
    default:
        return 0; // Unknown
    }
}

std::optional<DateTime> dateTime(std::uint32_t time, Clock clock) {
    if (clock == Clock::Uptime)
        return DateTime{fmt::format("{:08}{:02}{:02}{:02}.000000:000", time / 86400,
                                    time / 3600 % 24, time / 60 % 60, time % 60)};
    if (clock == Clock::None)
        return std::nullopt;
    const std::time_t seconds = time;
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    return DateTime{fmt::format("{:04}{:02}{:02}{:02}{:02}{:02}.000000+000", utc.tm_year + 1900,
                                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec)};
}

String text(std::string_view from) {
    return forXml(mpu::toString(from));
}

// The title and the summary, each said once.
String message(const String& title, const String& summary) {
    if (summary.size() == 0)
        return title;
    if (title.size() == 0 || summary.subString(0, title.size()) == title)
        return summary;
    String both = title;
    both.append(String(": "));
    both.append(summary);
    return both;
}

// What entry and alert have in common.
struct Common {
    Common(const Entry& entry, const Settings& settings)
        : event(entry.decode()), id(mpu::toString(instanceIDOf(entry))),
          source(forXml(event->getSource())), owner(text(settings.owningEntity)),
          time(dateTime(event->getTimestamp(), settings.clock)) {
        messageID = source;
        const std::uint16_t code = entry.header().eventId;
        messageID.append(String(fmt::format(".{}", code).c_str()));
        title = forXml(event->getEventID());
        summary = forXml(event->getSummary());
    }
    std::unique_ptr<Avrel_Event> event;
    String id;
    String source;
    String owner;
    std::optional<DateTime> time;
    String messageID;
    String title;
    String summary;
};

// Which controller, and which event of its log.
void addOrigin(Properties& to, const Common& common) {
    const Avrel_Event& event = *common.event;
    to.insert(to.end(),
              {{"EnclosureSerialNumber", forXml(event.getEnclosureSerialNumber())},
               {"ControllerSerialNumber", forXml(event.getControllerSerialNumber())},
               {"ControllerSlotID", std::uint32_t(event.getControllerSlotID())},
               {"EventLogInstanceNumber", std::uint32_t(event.getEventLogInstanceNumber())},
               {"SequenceID", std::uint32_t(event.getSequenceID())},
               {"Timestamp", std::uint32_t(event.getTimestamp())},
               {"Source", common.source},
               {"Category", forXml(event.getCategory())},
               {"EventType", std::uint16_t(event.getEventType())},
               {"Title", common.title},
               {"Summary", common.summary}});
}

} // namespace

std::string instanceIDOf(const Entry& entry) {
    return fmt::format("{}{:016x}", kOrganization, entry.id);
}

std::optional<std::uint64_t> entryIDOf(std::string_view instanceID) {
    if (!instanceID.starts_with(kOrganization))
        return std::nullopt;
    instanceID.remove_prefix(kOrganization.size());
    std::uint64_t id = 0;
    const char* end = instanceID.data() + instanceID.size();
    if (instanceID.size() != 16 || std::from_chars(instanceID.data(), end, id, 16).ptr != end)
        return std::nullopt;
    return id;
}

Properties logEntry(const Entry& entry, const Settings& settings) {
    const Common common(entry, settings);
    const Avrel_Event& event = *common.event;
    Properties all;
    all.reserve(28);
    all = {{"InstanceID", common.id},
           {"LogInstanceID", String(kLogInstanceID)},
           {"LogName", text(settings.logName)},
           {"RecordID", String(fmt::format("{}.{:010}", event.getEventLogInstanceNumber(),
                                           event.getSequenceID())
                                   .c_str())},
           {"ElementName", common.title},
           {"PerceivedSeverity", perceivedSeverity(event.getEventType())},
           {"OwningEntity", common.owner},
           {"MessageID", common.messageID},
           {"Message", message(common.title, common.summary)},
           {"RecordFormat", String()},
           {"RecordData", forXml(event.getBody())},
           {"Locale", String("en_US")}};
    if (common.time)
        all.push_back({"CreationTimeStamp", *common.time});
    addOrigin(all, common);
    return all;
}

Properties alert(const Entry& entry, const Settings& settings) {
    const Common common(entry, settings);
    const Avrel_Event& event = *common.event;
    Properties all = {
        {"IndicationIdentifier", common.id},
        {"EventID", common.id},
        {"Description", forXml(event.getBody())},
        {"AlertingManagedElement", forXml(event.getControllerSerialNumber())},
        {"AlertingElementFormat", std::uint16_t(1)}, // Other
        {"OtherAlertingElementFormat", String("Serial number of the controller")},
        {"AlertType", std::uint16_t(5)}, // Device Alert
        {"PerceivedSeverity", perceivedSeverity(event.getEventType())},
        {"ProbableCause", std::uint16_t(0)}, // Unknown
        {"SystemName", forXml(event.getEnclosureSerialNumber())},
        {"ProviderName", String("MPU_RecordLogProvider")},
        {"OwningEntity", common.owner},
        {"MessageID", common.messageID},
        {"Message", message(common.title, common.summary)},
    };
    if (common.time)
        all.push_back({"EventTime", *common.time});
    addOrigin(all, common);
    return all;
}

Properties recordLog(std::size_t entries, const SpoolState& state, const Settings& settings) {
    return {{"InstanceID", String(kLogInstanceID)},
            {"Name", text(settings.logName)},
            {"ElementName", text(settings.logName)},
            {"MaxNumberOfRecords", std::uint64_t(settings.maxEvents)},
            {"CurrentNumberOfRecords", std::uint64_t(entries)},
            {"OverwritePolicy", std::uint16_t(2)}, // Wraps when Full
            {"LogState", std::uint16_t(2)},        // Normal
            {"EnabledState", std::uint16_t(2)},    // Enabled
            {"SpoolFaults", state.faults},
            {"LastSpoolFault", text(state.lastFault)}};
}

String forXml(const String& all) {
    const auto unit = [&](Uint32 i) { return Uint16(all[i]); };
    const auto isHigh = [](Uint16 u) { return (u & 0xFC00) == 0xD800; };
    const auto isLow = [](Uint16 u) { return (u & 0xFC00) == 0xDC00; };
    String clean = all; // shares the text until one is replaced
    for (Uint32 i = 0; i < all.size(); ++i) {
        const Uint16 u = unit(i);
        if (isHigh(u) && i + 1 < all.size() && isLow(unit(i + 1)))
            ++i;
        else if ((u < 0x20 && u != '\t' && u != '\n' && u != '\r') || (u & 0xF800) == 0xD800 ||
                 u >= 0xFFFE)
            clean[i] = Uint16(0xFFFD);
    }
    return clean;
}

} // namespace Pegasus::provider
