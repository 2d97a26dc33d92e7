// An event as the formats take it: all texts are valid UTF-8.
#pragma once

#include "event/Avrel_Event.h"
#include "event/Draft.h"
#include "event/Record.h"
#include "formats/Body.h"
#include "formats/Clock.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace Pegasus::formats {

class Readings;

// What one item of a body rests on.
struct FieldBasis {
    Provenance layout = Provenance::Documented;
    std::uint32_t missingBytes = 0;
};

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
    std::string_view layout = nameOf(Provenance::Documented); // that it rests on
    std::uint32_t missingBytes = 0;
    std::uint32_t unreadBytes = 0;
    bool isUnknown = false; // the decoder has no row for it

    std::string_view time;      // as RFC 3339, where the epoch is known
    std::string_view shownTime; // as people see it, where that is not the number
    // Of the input, and where the event is in its messages: when asked for.
    std::string_view file;
    std::uint64_t offset = 0;

    std::span<const std::uint8_t> payload; // as it came
    // Of the items that BodyParser finds in the body. Empty when all are documented and complete,
    // or when nobody asked.
    std::span<const FieldBasis> fields;
};

struct DecodeOptions {
    bool fieldBasis = false; // tell what each element rests on
    bool readings = false;   // watch every decoding, for EventDecoder::readings()
    bool knownOnly = false;  // leave out what is assumed: the number and the payload stand for it
    TimeOptions time{};
};

// Where an event comes from.
struct Origin {
    std::string_view file;
    std::uint64_t offset = 0;
};

// Decodes one record after the other. Holds scratch memory, in which the texts of the last event
// are: one per thread.
class EventDecoder {
public:
    explicit EventDecoder(const DecodeOptions& options = {});
    ~EventDecoder();
    // `record` has at least its header. As MPUEvent::create_Avrel_Event() decodes it, but without
    // the framework's strings where the decoder is one of ours.
    const DecodedEvent& decode(std::span<const std::uint8_t> record, const Origin& origin = {});
    // The texts of an event that is there already.
    const DecodedEvent& take(Avrel_Event& event);

    // What the last event was read from; isPlain() tells whether the places in its texts hold. With
    // the option alone; empty where the decoder is not one of ours.
    const Readings& readings() const { return *readings_; }
    bool isPlain() const { return isPlain_; }
    // The last event is shown: times of others may be relative to it.
    void shown() { clock_.advance(event_.timestamp); }

private:
    void decode(const mpu::Record& record, mpu::DecodeFunction function);
    void tellTime();
    void tell(const EventBasis& basis);
    void tellFields(const EventBasis& basis);
    void leaveOut(const EmpEvLogMsg_s& header);

    DecodedEvent event_;
    mpu::Draft draft_;
    const DecodeOptions options_;
    Clock clock_;
    std::unique_ptr<Readings> readings_; // null when no option asks for them
    bool isPlain_ = true;
    BodyParser parser_;
    std::vector<FieldBasis> anyField_;
    std::vector<FieldBasis> knownFields_;
    mpu::BodyWriter known_;
    std::vector<std::uint8_t> padded_; // a record that claims more than it has
    mpu::StackWriter<64> file_;
    mpu::StackWriter<64> enclosure_;
    mpu::StackWriter<64> controller_;
    mpu::StackWriter<32> source_;
    mpu::StackWriter<32> category_;
    mpu::StackWriter<32> eventType_;
};

} // namespace Pegasus::formats
