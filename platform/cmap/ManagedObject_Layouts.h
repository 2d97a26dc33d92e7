// The registry of managed-object classes: class identifier to name and layout.
#pragma once

#include "platform/cmap/ManagedObject.h"
#include "platform/cmap/NetworkStats_Layouts.h"

#include <utility>

namespace Pegasus::mpu {

constexpr std::string_view objectClassText(std::size_t classId) {
    switch (classId) {
#define MPUEVENT_MANAGED_OBJECT(ID, CLASS)                                                         \
    case ID:                                                                                       \
        return #CLASS;
        MPUEVENT_MANAGED_OBJECTS(MPUEVENT_MANAGED_OBJECT)
#undef MPUEVENT_MANAGED_OBJECT
    default:
        return "";
    }
}
template <std::size_t... Id>
constexpr std::array<std::string_view, sizeof...(Id) + 1>
objectClassTexts(std::index_sequence<Id...>) {
    return {objectClassText(Id)..., "ManagedObject"};
}
// By class identifier; the last one is for all others.
inline constexpr auto kObjectClassTexts = objectClassTexts(std::make_index_sequence<59>());
inline constexpr NameTable kObjectClasses = names<kObjectClassTexts>(Fallback::Last);

// All objects whose places are known begin with their identifier, so the others do too.
inline constexpr Row kObjectRows[] = {
    Row("ObjID", "0x%08X", u32(0)).assumed(),
};

// The attributes of an object; null for a class without a name. The statistics classes are taken to
// be encoded as the statistics of the same names that the network-configuration service logs.
constexpr const Layout* objectLayout(std::uint8_t classId) {
    switch (classId) {
    case 41:
    case 42:
        return &kLayout<kPortStatsRows>;
    case 43:
        return &kLayout<kOffloadStatsRows>;
    case 44:
        return &kLayout<kTcpStatsRows>;
    case 45:
        return &kLayout<kManagementPortStatsRows>;
    default:
        return kObjectClasses.find(classId).empty() ? nullptr : &kLayout<kObjectRows>;
    }
}

// Writes the object as render() of its class gives it, one that is registered among them.
void writeObject(TextWriter& out, std::uint8_t classId, const RecordView& data);

} // namespace Pegasus::mpu
