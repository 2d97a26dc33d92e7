// What decoding reads of a record.
#pragma once

#include "event/EventBasis.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Pegasus::mpu {

class RecordView;
class TextWriter;
struct Layout;

// Sees every read as it happens, and writes the structures in place of the interpreter.
class Trace {
public:
    virtual ~Trace() = default;
    // Code read `count` bytes, `missing` of which, the last ones, the record lacks.
    virtual void read(std::size_t at, std::size_t count, std::size_t missing) = 0;
    virtual void write(TextWriter& out, const Layout& layout, const RecordView& view,
                       std::string_view titleOf) = 0;
    // What code writes from here on is known so well.
    virtual void beginCode(Provenance provenance) = 0;
    // The meaning of the event's codes is: title and summary say no more than that.
    virtual void beginEvent(Provenance provenance) = 0;
};

// The views of a record note here what was read from it. Offsets are from the record's start.
class Footprint {
public:
    Footprint() = default;
    Footprint(const Footprint&) = delete;
    Footprint& operator=(const Footprint&) = delete;

    // A new record, `carried` bytes of which came. Its header counts as read.
    void begin(std::size_t carried);
    // `wanted` bytes were read, the first `inside` of which are in the view.
    void read(std::size_t at, std::size_t inside, std::size_t wanted);
    // A number of at most 8 bytes was read, all of it in the view.
    void readNumber(std::size_t at, std::size_t size);
    // A text was read, which ends where the record does.
    void readText(std::size_t at, std::size_t size);
    // A statement was made that is known no better.
    void weaken(Provenance provenance) {
        if (provenance > weakest_)
            weakest_ = provenance;
    }
    // No table has the event's codes.
    void noteUnknown() { isUnknown_ = true; }
    // Like weaken(), for code that writes.
    void beginCode(Provenance provenance) {
        weaken(provenance);
        if (trace_) [[unlikely]]
            trace_->beginCode(provenance);
    }
    // Like weaken(), for the meaning of the event's codes.
    void beginEvent(Provenance provenance) {
        weaken(provenance);
        if (trace_) [[unlikely]]
            trace_->beginEvent(provenance);
    }

    // Reads the bytes at `at` whose bits are set, from the lowest bit of the first word on.
    // Returns false, and does nothing, unless all `extent` bytes have come.
    bool readMask(std::size_t at, const std::uint32_t* mask, std::size_t extent) {
        if (at + extent > carried_) [[unlikely]]
            return false;
        std::uint32_t* to = read_ + at / kBits;
        const unsigned shift = at % kBits;
        for (const std::uint32_t* const end = mask + (extent + kBits - 1) / kBits; mask != end;) {
            const std::uint64_t bits = std::uint64_t{*mask++} << shift;
            *to++ |= static_cast<std::uint32_t>(bits);
            *to |= static_cast<std::uint32_t>(bits >> kBits);
        }
        return true;
    }

    EventBasis basis() const;
    // Bytes of the record that came, its header at least.
    std::size_t carried() const { return carried_; }

    Trace* trace() const { return trace_; }
    void setTrace(Trace* trace) { trace_ = trace; }

private:
    static constexpr std::size_t kBits = 32;
    static constexpr std::size_t kFew = 33; // 1 KiB, and a word that readMask() may touch

    void mark(std::size_t begin, std::size_t end);
    void lack(std::size_t begin, std::size_t end);

    std::size_t carried_ = 0;
    std::uint32_t* read_ = few_; // a bit for each byte
    std::uint32_t few_[kFew];
    std::vector<std::uint32_t> many_; // of a long record
    std::vector<bool> lacked_;        // the bytes that are missing, empty for nearly all records
    std::uint32_t missing_ = 0;       // their number
    Trace* trace_ = nullptr;
    Provenance weakest_ = Provenance::Documented;
    bool isUnknown_ = false;
};

} // namespace Pegasus::mpu
