// What each statement of an event was read from.
#pragma once

#include "formats/Body.h"
#include "formats/DecodedEvent.h"

namespace Pegasus::formats {

// Bytes that were read at once, and the text that they became.
struct Reading {
    enum Text : unsigned char { Title, Summary, Body };

    std::uint32_t at;      // in the record
    std::uint32_t size;    // of them
    std::uint32_t missing; // the last of them, which the record lacks
    Provenance provenance;
    Text text;
    bool byCode;       // a decoder's code read it, to decide or to write after `begin`
    std::string form;  // as a printf format, where a table tells
    std::size_t begin; // in the text as it was written
    std::size_t end;   // the same as `begin` when a row was left out
};

// Watches the decoding of one record after the other.
class Readings : public mpu::Trace {
public:
    explicit Readings(const mpu::Draft& draft) : draft_(draft) {}

    void clear();
    // In the order of reading.
    const std::vector<Reading>& all() const { return all_; }
    // How well the meaning of the event's codes is known.
    Provenance meaning() const { return meaning_; }

    // The item of a body for each reading of it, none for those that none of the items shows.
    // `items` are of the body as it was written.
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> itemsOf(std::string_view body,
                                     const std::vector<BodyItem>& items) const;
    // What the items of the body rest on.
    const std::vector<FieldBasis>& basisOf(std::string_view body,
                                           const std::vector<BodyItem>& items);

    void read(std::size_t at, std::size_t count, std::size_t missing) override;
    void write(mpu::TextWriter& out, const mpu::Layout& layout, const mpu::RecordView& view,
               std::string_view titleOf) override;
    void beginCode(Provenance provenance) override;
    void beginEvent(Provenance provenance) override;

private:
    // Where in the body code begins to write what is known so well.
    struct Stretch {
        std::size_t begin;
        Provenance provenance;
    };

    void settle();

    const mpu::Draft& draft_;
    std::vector<Reading> all_;
    std::size_t settled_ = 0; // of them, the number whose text is known
    std::size_t summaryBegin_ = 0;
    std::size_t titleBegin_ = 0;
    std::vector<Stretch> stretches_;
    std::vector<FieldBasis> basis_;
    Provenance meaning_ = Provenance::Documented;
    bool inLayout_ = false;
};

// Where the item is in the body, its tags with it.
std::pair<std::size_t, std::size_t> extentOf(std::string_view body, const BodyItem& item);

} // namespace Pegasus::formats
