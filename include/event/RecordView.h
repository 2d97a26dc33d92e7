// The only way to the bytes of a record.
#pragma once

#include "event/EmpEvLogMsg_s.h"
#include "event/Export.h"
#include "event/Footprint.h"

#include <algorithm>
#include <string_view>

namespace Pegasus::mpu {

// Bytes of a record, which may be anything. A writer takes them in untrusted() and raw() alone, so
// that none of them gets into an event by way of a text of ours; who has to look at them says so.
class Untrusted {
public:
    Untrusted() = default;
    explicit Untrusted(std::string_view bytes) : bytes_(bytes) {}

    std::string_view raw() const { return bytes_; }
    std::size_t size() const { return bytes_.size(); }
    bool empty() const { return bytes_.empty(); }

private:
    std::string_view bytes_;
};

// A bounded run of bytes. Every operation is total: past the end bytes read as zero (a number that
// straddles the end keeps its inside bytes), texts end and runs of bytes are cut. A view of a
// record whose footprint is wanted notes what is read through it.
class RecordView {
public:
    static constexpr std::size_t kToEnd = static_cast<std::size_t>(-1);

    RecordView() = default;
    RecordView(const void* data, std::size_t size, Footprint* footprint = nullptr)
        : data_(static_cast<const std::uint8_t*>(data)), size_(static_cast<std::uint32_t>(size)),
          footprint_(footprint) {}

    // The readable extent of a record: what was announced, or what the record claims if that is
    // more. Lengths that no message can carry count as nothing announced.
    static RecordView of(const EmpEvLogMsg_s* record, unsigned int announced,
                         Footprint* footprint = nullptr) {
        const std::size_t claimed = sizeof *record + record->evStructLength;
        return {record, announced > 0xFFFF ? claimed : std::max<std::size_t>(announced, claimed),
                footprint};
    }

    const std::uint8_t* data() const { return data_; }
    std::size_t size() const { return size_; }
    Footprint* footprint() const { return footprint_; }
    // Where in the record it begins.
    std::size_t offset() const { return at_; }

    std::uint8_t u8(std::size_t at) const {
        return static_cast<std::uint8_t>(number(at, sizeof(std::uint8_t)));
    }
    std::uint16_t u16(std::size_t at) const {
        return static_cast<std::uint16_t>(number(at, sizeof(std::uint16_t)));
    }
    std::uint32_t u32(std::size_t at) const {
        return static_cast<std::uint32_t>(number(at, sizeof(std::uint32_t)));
    }
    std::uint64_t u64(std::size_t at) const { return number(at, sizeof(std::uint64_t)); }

    // The bytes from `at` on, at most `count`.
    MPUEVENT_EXPORT Untrusted bytes(std::size_t at, std::size_t count = kToEnd) const;
    // The text from `at` to its NUL, at most `width` bytes.
    MPUEVENT_EXPORT Untrusted text(std::size_t at, std::size_t width = kToEnd) const;

    RecordView subview(std::size_t at, std::size_t count = kToEnd) const {
        const std::string_view part = run(at, count);
        RecordView view(part.data(), part.size(), footprint_);
        // Past the end too, where what is missing is told by its place.
        view.at_ = at_ + static_cast<std::uint32_t>(std::min<std::size_t>(at, 0xFFFF));
        return view;
    }

    // `count` bytes were read at `at` by way of data().
    void note(std::size_t at, std::size_t count) const;
    // The same for a structure at the start, those of whose bytes count that have their bits set.
    // False when not all are there, and with nothing noted.
    bool noteMask(const std::uint32_t* mask, std::size_t extent) const {
        return extent <= size_ && footprint_->readMask(at_, mask, extent);
    }

private:
    std::string_view run(std::size_t at, std::size_t count) const {
        if (at >= size_)
            return {};
        return {reinterpret_cast<const char*>(data_) + at, std::min(count, size_ - at)};
    }

    // Out of line, like bytes() and text(): inlining them would bloat every caller.
    MPUEVENT_EXPORT std::uint64_t number(std::size_t at, std::size_t size) const;

    const std::uint8_t* data_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint32_t at_ = 0; // in the record
    Footprint* footprint_ = nullptr;
};

} // namespace Pegasus::mpu
