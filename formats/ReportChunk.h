// Some of the events of the report page, as the data that its script reads.
#pragma once

#include "formats/Objects.h"
#include "formats/Readings.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Pegasus::formats {

// Two texts, of JSON. "rows" is what the list of events needs, an object of columns:
//
//     sequence, time: each less the one before
//     signs: 1 layout assumed, 2 bytes short, 4 bytes unread, 8 code unknown
//     type, source, title, controller: {"texts": .., "of": ..}; the second has an index into the
//         first for each event. A type is [text, severity]; a controller is [enclosure, controller,
//         slot, log].
//     summary, objects: indices into the lines after an empty line, summaries, and of those after
//         another one, objects: [[kind, id, whether assumed], ..] without those of the header
//
// "bodies" is what an open event shows: {"forms": .., "events": ..}.
//
//     A form is the items of a body: [type, name, layout, rule, (offset, size, missing)..]. The
//         triples tell which bytes of the payload it was read from. The rule is its value with a
//         printf() format in place of each number that the first of these bytes are, high byte
//         first; "" when the value is in the event.
//     An event is [form, category, missing bytes, unread bytes, payload in hexadecimal, values..].
//
// Values that are in the payload anyway are not kept twice: that halves the page.
class ReportChunk {
public:
    // `isPlain`: the places that the readings tell hold for the event's texts.
    void add(const DecodedEvent& event, const std::vector<ObjectReference>& objects,
             const Readings& readings, bool isPlain);
    bool isFull() const { return count_ == kMaxEvents || bodies_.view().size() >= kMaxBodies; }
    bool isEmpty() const { return count_ == 0; }
    // Writes both, and is empty again.
    void flush(mpu::TextWriter& out);

private:
    static constexpr std::size_t kMaxEvents = 4096;
    static constexpr std::size_t kMaxBodies = std::size_t{4} << 20;

    // Pieces of JSON, each of them once, in the order in which they came.
    class Texts {
    public:
        std::uint32_t indexOf(std::string_view json);
        void put(mpu::TextWriter& out, std::string_view between = ",") const;
        void clear();

    private:
        std::unordered_map<std::string, std::uint32_t> indices_;
        std::vector<const std::string*> texts_;
    };
    struct Column {
        const char* name;
        Texts texts{};
        std::vector<std::uint32_t> of{};
    };

    void addRow(const DecodedEvent& event, const std::vector<ObjectReference>& objects);
    void addBody(const DecodedEvent& event, const Readings& readings, bool isPlain);

    std::size_t count_ = 0;
    std::uint32_t sequence_ = 0; // of the last event
    std::uint32_t time_ = 0;
    mpu::StackWriter<64> sequences_;
    mpu::StackWriter<64> times_;
    mpu::StackWriter<64> signs_;
    Column columns_[6] = {{"type"},       {"source"},  {"title"},
                          {"controller"}, {"summary"}, {"objects"}};
    Texts forms_;
    mpu::StackWriter<64> bodies_;

    // Scratch memory.
    BodyParser parser_;
    mpu::StackWriter<1024> text_;
    mpu::StackWriter<1024> form_;
    mpu::StackWriter<1024> values_;
    std::vector<std::vector<const Reading*>> readingsOf_; // each item
};

} // namespace Pegasus::formats
