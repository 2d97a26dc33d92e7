#include "event/RecordView.h"

namespace Pegasus::mpu {

std::uint64_t RecordView::number(std::size_t at, std::size_t size) const {
    if (at >= size_ || size_ - at < size) [[unlikely]] {
        note(at, size);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | (at + i < size_ ? data_[at + i] : 0);
        return value;
    }
    if (footprint_)
        footprint_->readNumber(at_ + at, size);
    switch (size) {
    case 1:
        return data_[at];
    case 2:
        return loadBig<std::uint16_t>(data_ + at);
    case 4:
        return loadBig<std::uint32_t>(data_ + at);
    default:
        return loadBig<std::uint64_t>(data_ + at);
    }
}

Untrusted RecordView::bytes(std::size_t at, std::size_t count) const {
    const std::string_view found = run(at, count);
    note(at, found.size());
    return Untrusted(found);
}

Untrusted RecordView::text(std::size_t at, std::size_t width) const {
    const std::string_view field = run(at, width);
    const std::size_t length = std::min(field.find('\0'), field.size());
    if (footprint_)
        footprint_->readText(at_ + at, length + (length < field.size()));
    return Untrusted(field.substr(0, length));
}

void RecordView::note(std::size_t at, std::size_t count) const {
    if (footprint_)
        footprint_->read(at_ + at, std::min(count, size_ - std::min<std::size_t>(at, size_)),
                         count);
}

} // namespace Pegasus::mpu
