// An event as the formats take it: all texts are valid UTF-8.
#pragma once

#include "event/Avrel_Event.h"
#include "event/Draft.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace Pegasus::formats {

struct DecodedEvent {
    std::string_view enclosureSerialNumber;
    std::string_view controllerSerialNumber;
    std::uint32_t controllerSlotID = 0;
    std::uint32_t eventLogInstanceNumber = 0;
    std::uint32_t sequenceID = 0;
    std::uint32_t timestamp = 0;
    std::string_view source;
    std::string_view category;
    std::uint32_t eventType = 0;
    std::string_view eventTypeText;
    std::string_view eventID;
    std::string_view summary;
    std::string_view body;
};

// Decodes one record after the other. Holds scratch memory, in which the texts of the last event
// are: one per thread.
class EventDecoder {
public:
    // `record` has at least its header. As MPUEvent::create_Avrel_Event() decodes it, but without
    // the framework's strings where the decoder is one of ours.
    const DecodedEvent& decode(std::span<const std::uint8_t> record);
    // The texts of an event that is there already.
    const DecodedEvent& take(Avrel_Event& event);

private:
    DecodedEvent event_;
    mpu::Draft draft_;
    std::vector<std::uint8_t> padded_; // a record that claims more than it has
    mpu::StackWriter<64> enclosure_;
    mpu::StackWriter<64> controller_;
    mpu::StackWriter<32> source_;
    mpu::StackWriter<32> category_;
    mpu::StackWriter<32> eventType_;
};

} // namespace Pegasus::formats
