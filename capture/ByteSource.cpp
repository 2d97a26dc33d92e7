#include "capture/ByteSource.h"

#include "event/Ascii.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

namespace Pegasus::capture {

std::size_t FileSource::read(std::uint8_t* to, std::size_t room) {
    for (;;) {
        const ssize_t got = ::read(descriptor_, to, room);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno == EAGAIN) { // somebody else's setting of a shared terminal or pipe
            pollfd ready{descriptor_, POLLIN, 0};
            (void)::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            failure_ = errno;
            return 0;
        }
    }
}

bool FileSource::ready() {
    pollfd input{descriptor_, POLLIN, 0};
    return ::poll(&input, 1, 0) != 0; // a failure shows when it is read
}

std::size_t MemorySource::read(std::uint8_t* to, std::size_t room) {
    const std::size_t count = std::min(room, left_);
    if (count != 0)
        std::memcpy(to, next_, count);
    next_ += count;
    left_ -= count;
    return count;
}

std::size_t HexSource::read(std::uint8_t* to, std::size_t room) {
    while (taken_ == bytes_.size()) {
        bytes_.clear();
        taken_ = 0;
        const std::size_t got = text_.read(chunk_.data(), chunk_.size());
        if (got == 0) {
            endToken();
            if (bytes_.empty())
                return 0;
        }
        for (std::size_t i = 0; i < got; ++i)
            take(static_cast<char>(chunk_[i]));
    }
    const std::size_t count = std::min(room, bytes_.size() - taken_);
    std::memcpy(to, bytes_.data() + taken_, count);
    taken_ += count;
    return count;
}

void HexSource::take(char c) {
    ++column_;
    if (c == '\n') {
        endToken();
        now_ = {};
        ++line_;
        column_ = 0;
    } else if (now_.ended) {
        return;
    } else if (c == '#') {
        endToken();
        now_.ended = true;
    } else if (mpu::isSpace(c)) {
        endToken();
        if (++now_.blanks == 2 && now_.offset && now_.bytes)
            now_.ended = true;
    } else if (mpu::isDigit(c)) {
        add(static_cast<std::uint8_t>(c - '0'));
    } else if (const char lower = static_cast<char>(c | 0x20); lower >= 'a' && lower <= 'f') {
        add(static_cast<std::uint8_t>(lower - 'a' + 10));
    } else if (c == ':' && !now_.settled && now_.firstCount != 0) {
        now_.settled = now_.offset = true;
    } else {
        settleFirst();
        wrong(column_, mpu::isPrintable(c) ? fmt::format("\"{}\" is not a hexadecimal digit", c)
                                           : fmt::format("byte 0x{:02X} is not a hexadecimal digit",
                                                         static_cast<unsigned char>(c)));
    }
}

void HexSource::add(std::uint8_t digit) {
    now_.blanks = 0;
    if (!now_.settled) {
        if (now_.firstCount < kMaxOffsetDigits) {
            now_.first[now_.firstCount++] = digit;
            digitColumn_ = column_;
            return;
        }
        settleFirst();
    }
    digitColumn_ = column_;
    if (half_ < 0) {
        half_ = digit;
        return;
    }
    bytes_.push_back(static_cast<std::uint8_t>(half_ << 4 | digit));
    half_ = -1;
    now_.bytes = true;
}

// The first digits are data.
void HexSource::settleFirst() {
    if (now_.settled)
        return;
    now_.settled = true;
    const std::uint64_t column = digitColumn_;
    for (unsigned i = 0; i < now_.firstCount; ++i)
        add(now_.first[i]);
    digitColumn_ = column;
}

void HexSource::endToken() {
    if (now_.firstCount != 0)
        settleFirst();
    if (half_ >= 0)
        wrong(digitColumn_, "a byte has two digits");
}

void HexSource::wrong(std::uint64_t column, const std::string& what) {
    onFault_(fmt::format("line {}, column {}: {}; the rest of the line is ignored", line_, column,
                         what));
    half_ = -1;
    now_.ended = true;
}

} // namespace Pegasus::capture
