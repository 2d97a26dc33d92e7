// The only way to the bytes of a record.
#pragma once

#include "event/EmpEvLogMsg_s.h"

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
// straddles the end keeps its inside bytes), texts end and runs of bytes are cut.
class RecordView {
public:
    static constexpr std::size_t kToEnd = static_cast<std::size_t>(-1);

    RecordView() = default;
    RecordView(const void* data, std::size_t size)
        : data_(static_cast<const std::uint8_t*>(data)), size_(size) {}

    // The readable extent of a record: what was announced, or what the record claims if that is
    // more. Lengths that no message can carry count as nothing announced.
    static RecordView of(const EmpEvLogMsg_s* record, unsigned int announced) {
        const std::size_t claimed = sizeof *record + record->evStructLength;
        return {record, announced > 0xFFFF ? claimed : std::max<std::size_t>(announced, claimed)};
    }

    const std::uint8_t* data() const { return data_; }
    std::size_t size() const { return size_; }

    std::uint8_t u8(std::size_t at) const { return at < size_ ? data_[at] : std::uint8_t{0}; }
    std::uint16_t u16(std::size_t at) const { return load<std::uint16_t>(at); }
    std::uint32_t u32(std::size_t at) const { return load<std::uint32_t>(at); }
    std::uint64_t u64(std::size_t at) const { return load<std::uint64_t>(at); }

    // The bytes from `at` on, at most `count`.
    Untrusted bytes(std::size_t at, std::size_t count = kToEnd) const {
        if (at >= size_)
            return {};
        return Untrusted({reinterpret_cast<const char*>(data_) + at, std::min(count, size_ - at)});
    }

    // The text from `at` to its NUL, at most `width` bytes.
    Untrusted text(std::size_t at, std::size_t width = kToEnd) const {
        const std::string_view run = bytes(at, width).raw();
        return Untrusted(run.substr(0, run.find('\0')));
    }

    RecordView subview(std::size_t at, std::size_t count = kToEnd) const {
        const std::string_view run = bytes(at, count).raw();
        return {run.data(), run.size()};
    }

private:
    template <class T>
    T load(std::size_t at) const {
        if (at < size_ && size_ - at >= sizeof(T)) [[likely]]
            return loadBig<T>(data_ + at);
        return static_cast<T>(loadAtEnd(at, sizeof(T)));
    }
    // Kept out of the callers, which are many.
    [[gnu::noinline, gnu::cold]] std::uint64_t loadAtEnd(std::size_t at, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | u8(at + i);
        return value;
    }

    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace Pegasus::mpu
