// The only way to the bytes of a record.
#pragma once

#include "event/EmpEvLogMsg_s.h"
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

    std::uint8_t u8(std::size_t at) const { return load<std::uint8_t>(at); }
    std::uint16_t u16(std::size_t at) const { return load<std::uint16_t>(at); }
    std::uint32_t u32(std::size_t at) const { return load<std::uint32_t>(at); }
    std::uint64_t u64(std::size_t at) const { return load<std::uint64_t>(at); }

    // The bytes from `at` on, at most `count`.
    Untrusted bytes(std::size_t at, std::size_t count = kToEnd) const {
        const std::string_view found = run(at, count);
        note(at, found.size());
        return Untrusted(found);
    }

    // The text from `at` to its NUL, at most `width` bytes.
    Untrusted text(std::size_t at, std::size_t width = kToEnd) const {
        const std::string_view field = run(at, width);
        const std::size_t length = std::min(field.find('\0'), field.size());
        if (footprint_)
            footprint_->readText(at_ + at, length + (length < field.size()));
        return Untrusted(field.substr(0, length));
    }

    RecordView subview(std::size_t at, std::size_t count = kToEnd) const {
        const std::string_view part = run(at, count);
        RecordView view(part.data(), part.size(), footprint_);
        // Past the end too, where what is missing is told by its place.
        view.at_ = at_ + static_cast<std::uint32_t>(std::min<std::size_t>(at, 0xFFFF));
        return view;
    }

    // `count` bytes were read at `at` by way of data().
    void note(std::size_t at, std::size_t count) const {
        if (footprint_)
            footprint_->read(at_ + at, std::min(count, size_ - std::min<std::size_t>(at, size_)),
                             count);
    }

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

    template <class T>
    T load(std::size_t at) const {
        if (at < size_ && size_ - at >= sizeof(T)) [[likely]] {
            if (footprint_)
                footprint_->readNumber(at_ + at, sizeof(T));
            return loadBig<T>(data_ + at);
        }
        return static_cast<T>(loadAtEnd(at, sizeof(T)));
    }
    // Out of line: inlining it would bloat every caller.
    [[gnu::noinline, gnu::cold]] std::uint64_t loadAtEnd(std::size_t at, std::size_t size) const {
        note(at, size);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | (at + i < size_ ? data_[at + i] : 0);
        return value;
    }

    const std::uint8_t* data_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint32_t at_ = 0; // in the record
    Footprint* footprint_ = nullptr;
};

} // namespace Pegasus::mpu
