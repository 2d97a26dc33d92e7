// What events are about: drives, volumes, connections and what else fails or is replaced.
#pragma once

#include "formats/Body.h"
#include "formats/DecodedEvent.h"
#include "formats/Statistics.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace Pegasus::formats {

struct ObjectKind {
    std::string_view name;
    std::string_view plural;
    std::string_view title;
    bool perController; // each controller of an enclosure counts its own
};

enum ObjectKindIndex : std::uint8_t {
    DriveKind,
    VolumeKind,
    LunKind,
    FanKind,
    PowerSupplyKind,
    TemperatureSensorKind,
    AdapterKind,
    PortKind,
    ConnectionKind,
    InitiatorKind,
    ControllerKind, // those of the header, which every event has
    EnclosureKind,
};
inline constexpr ObjectKind kObjectKinds[] = {
    {"drive", "drives", "Drive", false},
    {"volume", "volumes", "Volume", false},
    {"lun", "luns", "LUN", false},
    {"fan", "fans", "Fan", false},
    {"power-supply", "power-supplies", "Power supplies", false},
    {"temperature-sensor", "temperature-sensors", "Temperature sensor", false},
    {"adapter", "adapters", "Adapter", true},
    {"port", "ports", "Port", true},
    {"connection", "connections", "Connection", true},
    {"initiator", "initiators", "Initiator", false},
    {"controller", "controllers", "Controller", false},
    {"enclosure", "enclosures", "Enclosure", false},
};

// The elements of a body that name an object.
struct ObjectElement {
    std::string_view name;
    ObjectKindIndex kind;
    enum : std::uint8_t {
        Whole,     // the value is the number or the name
        Bracketed, // "Fan [2] has Fault"
        Lag,       // number of a link aggregation group
        None,      // stands for all of the kind
    } form = Whole;
};
inline constexpr ObjectElement kObjectElements[] = {
    {"Drive", DriveKind},
    {"Drive_Number", DriveKind},
    {"DRP_Device", DriveKind}, // the packet has the number of the drive that it is for
    {"Drive_Fault_LED", DriveKind, ObjectElement::Bracketed},
    {"Volume_Number", VolumeKind},
    {"vt_common_volume_number", VolumeKind},
    {"LUN", LunKind},
    {"Fan_Fault_Status", FanKind, ObjectElement::Bracketed},
    {"Fan_Speed", FanKind, ObjectElement::Bracketed},
    {"Power_Supply_Status", PowerSupplyKind, ObjectElement::None},
    {"Sensor_Position", TemperatureSensorKind},
    {"Adapter", AdapterKind},
    {"Adapter_Number", AdapterKind},
    {"Adatper_Number", AdapterKind},
    {"PortIndex", PortKind},
    {"LAG_Port", PortKind, ObjectElement::Lag},
    {"Socket", ConnectionKind},
    {"InitiatorName", InitiatorKind},
    {"Initiator_IP_Address", InitiatorKind},
};

// An object that an event names.
struct ObjectReference {
    ObjectKindIndex kind;
    std::string id; // a number, a name, an address; empty where the record has none
    bool isAssumed; // the layout that makes it one
};

// Finds what an event names: by the elements of its body that the table has, if their bytes are in
// the record, and the controller and the enclosure of its header. Wants events that were decoded
// with DecodeOptions::fieldBasis. Holds scratch memory: one per thread.
class ObjectFinder {
public:
    // Each object once; valid until the next call.
    const std::vector<ObjectReference>& of(const DecodedEvent& event);
    // Of the body of the last event.
    const std::vector<BodyItem>& items() const { return *items_; }
    // What the last event says of the one drive that it names; empty if it does not.
    std::string_view model() const { return model_; }
    std::string_view serialNumber() const { return serialNumber_; }

private:
    void add(ObjectKindIndex kind, std::string_view id, bool isAssumed);

    BodyParser parser_;
    const std::vector<BodyItem>* items_ = nullptr;
    std::vector<ObjectReference> found_;
    std::string_view model_;
    std::string_view serialNumber_;
};

// Events with one title in one object's story.
struct StoryStep {
    std::string source;
    std::string title;
    std::string summary; // of the first one, shortened
    unsigned severity;
    std::uint64_t count;
    Range time;
    std::uint32_t firstSequence; // of the first event and of the last one, as they came
    std::uint32_t lastSequence;
};

struct Object {
    ObjectKindIndex kind;
    std::string id;
    std::string enclosure;  // serial number
    std::string controller; // serial number; empty for objects of the whole enclosure
    std::uint64_t events = 0;
    std::uint64_t assumed = 0; // events whose layout is
    SeverityCounts severities{};
    Range time;
    std::string model;
    std::string serialNumber;
    // In the order in which they begin. Something worse than all before begins anew: what goes on
    // after it are steps of their own.
    std::vector<StoryStep> story;
    std::uint64_t untold = 0; // events after a story got too long

    // "Drive 7, ENC0004711"
    std::string name() const;
};

// What happened to each object. Keeps at most 65,536 objects with 64 steps each.
class Objects {
public:
    // What the event names; valid until the next call.
    const std::vector<ObjectReference>& add(const DecodedEvent& event);
    // Of one kind, or of all that are parts of a controller or an enclosure.
    std::vector<const Object*> worstFirst(std::optional<ObjectKindIndex> kind = {}) const;
    // Events of objects that came when there were too many.
    std::uint64_t others() const { return others_; }

private:
    // Kind, enclosure, controller, id.
    using Key = std::tuple<ObjectKindIndex, std::string, std::string, std::string>;
    struct Kept {
        Object object;
        std::size_t phase = 0; // step at which the present phase begins
        unsigned worst = 0;    // severity in it
    };
    void tell(Kept& kept, const DecodedEvent& event);

    ObjectFinder finder_;
    std::map<Key, Kept> objects_;
    std::uint64_t others_ = 0;
};

} // namespace Pegasus::formats
