#include "capture/HexText.h"

#include "event/Ascii.h"
#include "event/EmpEvLogMsg_s.h"
#include "platform/cmap/CMAPMessageHeader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fmt/format.h>

namespace Pegasus::capture {

namespace {

using mpu::isSpace;

constexpr std::size_t kText = std::size_t{64} * 1024;  // in the buffer
constexpr std::size_t kBytes = std::size_t{64} * 1024; // decoded at a time, or a little more
constexpr std::size_t kPart = 256; // of a line, which may be taken before all of it is there
constexpr std::size_t kMaxOffset = 16;
// More than fits in a message: what a longer "*" would add is between messages. Without a limit a
// short text would keep the reader busy for years.
constexpr std::uint64_t kMaxRepeated = std::uint64_t{1} << 20;
constexpr unsigned kColonBlanks = 2;  // before the characters that follow the bytes
constexpr unsigned kColumnBlanks = 3; // two may be in the middle of the bytes

constexpr std::array<std::uint8_t, 256> valuesOf(std::string_view digits) {
    std::array<std::uint8_t, 256> values;
    values.fill(0xFF);
    for (std::size_t i = 0; i < digits.size(); ++i)
        values[static_cast<std::uint8_t>(digits[i])] = static_cast<std::uint8_t>(i);
    return values;
}
constexpr auto kHex = [] {
    auto values = valuesOf("0123456789abcdef");
    for (char c = 'A'; c <= 'F'; ++c)
        values[static_cast<std::uint8_t>(c)] = static_cast<std::uint8_t>(c - 'A' + 10);
    return values;
}();
constexpr auto kBase64 =
    valuesOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

std::uint8_t hexValue(char c) {
    return kHex[static_cast<std::uint8_t>(c)];
}
bool isHex(char c) {
    return hexValue(c) < 16;
}
std::uint8_t base64Value(char c) {
    return kBase64[static_cast<std::uint8_t>(c)];
}
bool isWord(char c) {
    return mpu::isLetter(c) || mpu::isDigit(c) || c == '_';
}
// "0x", which as much must follow.
bool isPrefixed(std::string_view text, std::size_t at) {
    return text.size() - at > 2 && text[at] == '0' && (text[at + 1] | 0x20) == 'x';
}

std::size_t skipBlanks(std::string_view text, std::size_t at) {
    while (at < text.size() && isSpace(text[at]))
        ++at;
    return at;
}
std::size_t skipQuote(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && (text[at] == '>' || isSpace(text[at])))
        ++at;
    return at;
}
std::size_t skipHex(std::string_view text, std::size_t at) {
    while (at < text.size() && isHex(text[at]))
        ++at;
    return at;
}

struct Offset {
    std::uint64_t value;
    std::size_t digits;
    std::size_t end;
};

// The offset that begins a line of a dump.
std::optional<Offset> readOffset(std::string_view text, std::size_t at, unsigned radix,
                                 bool colon) {
    const std::size_t first = colon && isPrefixed(text, at) ? at + 2 : at;
    const std::size_t end = skipHex(text, first);
    Offset offset{0, end - first, end};
    if (offset.digits < (colon ? 1u : 4u) || offset.digits > kMaxOffset)
        return {};
    for (at = first; at < end; ++at) {
        if (hexValue(text[at]) >= radix)
            return {};
        offset.value = offset.value * radix + hexValue(text[at]);
    }
    if (colon) { // or a byte, when nothing follows
        if (end == text.size() || text[end] != ':' || skipBlanks(text, end + 1) == text.size())
            return {};
        ++offset.end;
    }
    if (offset.end < text.size() && !isSpace(text[offset.end]))
        return {};
    return offset;
}

struct Scan {
    bool whole;        // all of the line's bytes were taken
    std::size_t at;    // where it stopped, at the fault if that was one
    std::uint8_t* out; // after the bytes
};

// Takes the bytes of a line. So many blanks after a byte end them, or none do (0); then bytes may
// be joined by more than blanks.
Scan scan(std::string_view text, std::size_t at, unsigned endingBlanks, unsigned reversed,
          std::uint8_t* out) {
    const std::uint8_t* const first = out;
    const std::size_t size = text.size();
    for (;;) {
        std::uint8_t* const number = out;
        for (; at + 1 < size; at += 2) {
            const unsigned high = hexValue(text[at]);
            const unsigned low = hexValue(text[at + 1]);
            if ((high | low) > 15)
                break;
            *out++ = static_cast<std::uint8_t>(high << 4 | low);
        }
        if (reversed != 0 && out - number == static_cast<std::ptrdiff_t>(reversed))
            std::reverse(number, out);
        if (at == size)
            return {true, at, out};
        const char c = text[at];
        if (isSpace(c)) {
            const std::size_t blanks = at;
            at = skipBlanks(text, at + 1);
            if (endingBlanks != 0 && out != first && at - blanks >= endingBlanks)
                return {true, at, out};
        } else if (c == '#' ||
                   (endingBlanks == kColumnBlanks && out != first && (c == '|' || c == '>'))) {
            return {true, at, out};
        } else if (isHex(c)) { // one digit
            const bool alone = at + 1 == size || isSpace(text[at + 1]) || text[at + 1] == '#';
            return {false, alone ? at : at + 1, out};
        } else if (endingBlanks == 0 && out != number && (c == ':' || c == '-' || c == ',')) {
            if (++at < size && !isHex(text[at]) && !isSpace(text[at]) && text[at] != '#')
                return {false, at, out};
        } else {
            return {false, at, out};
        }
    }
}

unsigned reversed(const TextForm& form) {
    return form.lowFirst ? form.width : 0;
}

// Up to the last character after which nothing goes on; 0 if there is none.
std::size_t separable(std::string_view text) {
    return text.find_last_of(" \t\v\f\r,:-;{}") + 1;
}
// How much of hex text holds nothing that goes on after it.
std::size_t separableHex(std::string_view text) {
    if (skipHex(text, 0) == text.size()) // a separator may follow directly
        return (text.size() - 1) / 2 * 2;
    const std::size_t part = separable(text);
    return part == 0 ? text.size() : part; // it is foreign
}

} // namespace

TextSource::TextSource(ByteSource& text, FaultHandler report, TextForm form, std::uint64_t line)
    : text_(text), report_(std::move(report)), form_(form), buffer_(kText), line_(line) {}

std::size_t TextSource::read(std::uint8_t* to, std::size_t room) {
    for (;;) {
        while (size_ < kBytes && takeText()) {
        }
        // The last number of a dump may be padded, which only the line after it tells.
        const bool padded = form_.kind == TextForm::Column && !ended_;
        const std::size_t held = padded ? std::min<std::size_t>(form_.width - 1, size_) : 0;
        if (const std::size_t count = std::min(room, size_ - held - handedOut_); count != 0) {
            std::memcpy(to, bytes_.data() + handedOut_, count);
            handedOut_ += count;
            if (handedOut_ == size_ - held) {
                std::copy_n(bytes_.data() + handedOut_, held, bytes_.data());
                handedOut_ = 0;
                size_ = held;
            }
            return count;
        }
        if (ended_)
            return 0;
        if (next_ != 0) {
            std::memmove(buffer_.data(), buffer_.data() + next_, end_ - next_);
            end_ -= next_;
            searched_ -= next_;
            next_ = 0;
        }
        const std::size_t got = text_.read(reinterpret_cast<std::uint8_t*>(buffer_.data()) + end_,
                                           buffer_.size() - end_);
        if (got == 0 && text_.growing())
            return 0;
        end_ += got;
        ended_ = got == 0;
    }
}

// Takes a line, or the first part of a long one. False when more of the text must be there first.
bool TextSource::takeText() {
    const std::string_view text(buffer_.data() + next_, end_ - next_);
    const std::size_t size =
        std::min(text.find('\n', searched_ - next_), ended_ ? text.size() : text.npos);
    if (text.empty()) {
        if (ended_) { // what was left open
            endGroup(0);
            endRepetition();
        }
        return false;
    }
    if (size == text.npos) {
        searched_ = end_;
        std::size_t part = partOf(text);
        if (part == 0 && text.size() == buffer_.size()) {
            wrong(0, "the line is too long");
            part = text.size();
        }
        if (part == 0)
            return false;
        take(text.substr(0, part));
        begun_ = true;
        column_ += part;
        next_ += part;
        return true;
    }
    take(text.substr(0, size));
    next_ = std::min(next_ + size + 1, end_);
    searched_ = next_;
    ++line_;
    column_ = 0;
    begun_ = skipping_ = false;
    return true;
}

// How much of an unfinished line can be taken.
std::size_t TextSource::partOf(std::string_view text) const {
    if (skipping_)
        return text.size();
    if (text.size() < kPart || form_.kind == TextForm::Colon || form_.kind == TextForm::Column)
        return 0;
    if (!begun_) {
        const std::size_t at = skipQuote(text);
        if (text.size() - at < kPart / 2 || readOffset(text, at, 16, true))
            return 0;
    }
    return form_.kind == TextForm::Base64 ? text.size()
           : form_.kind == TextForm::List ? separable(text)
                                          : separableHex(text);
}

void TextSource::take(std::string_view text) {
    const std::size_t at = begun_ ? 0 : skipQuote(text);
    if (skipping_ || at == text.size())
        return;
    switch (form_.kind) {
    case TextForm::Plain:
        return takePlain(text, at);
    case TextForm::Colon:
    case TextForm::Column:
        return takeDump(text, at);
    case TextForm::List:
        return takeList(text, at);
    case TextForm::Base64:
        return takeBase64(text, at);
    }
}

void TextSource::takePlain(std::string_view text, std::size_t at) {
    const std::optional<Offset> offset = begun_ ? std::nullopt : readOffset(text, at, 16, true);
    const Scan found = scan(text, offset ? offset->end : at, offset ? kColonBlanks : 0,
                            reversed(form_), room(text.size() / 2));
    filled(found.out);
    if (!found.whole)
        foreign(text, found.at, "hexadecimal");
    skipping_ = skipping_ || found.at != text.size();
}

// A line of a dump.
void TextSource::takeDump(std::string_view text, std::size_t at) {
    if (text[at] == '#')
        return;
    if (text[at] == '*' && skipBlanks(text, at + 1) == text.size()) {
        repeated_ = expected_ && !last_.empty() ? line_ : 0;
        return;
    }
    const bool colon = form_.kind == TextForm::Colon;
    const std::optional<Offset> offset = readOffset(text, at, form_.radix, colon);
    if (offset && repeated_ != 0 && offset->value > *expected_)
        repeat(offset->value);
    std::uint8_t* const out = room(text.size() / 2);
    const Scan found = scan(text, offset ? offset->end : at, colon ? kColonBlanks : kColumnBlanks,
                            reversed(form_), out);
    const auto count = static_cast<std::size_t>(found.out - out);
    if (!offset) {
        if (found.whole && count != 0)
            wrong(at, "no offset");
        return;
    }
    const bool follows = !expected_ || offset->value == *expected_ || offset->value == 0;
    if (!follows && !found.whole)
        return; // a word that looks like a number
    if (!follows && count == 0 && offset->value < *expected_ &&
        *expected_ - offset->value < form_.width) { // the end, and what was padding
        size_ -= std::min(static_cast<std::size_t>(*expected_ - offset->value), size_ - handedOut_);
        expected_.reset();
        return;
    }
    if (!follows)
        report_(fmt::format("{}: offset {}, although the line before has {} bytes", place(at),
                            text.substr(at, offset->end - at - colon), last_.size()));
    endRepetition();
    size_ += count;
    if (count != 0)
        last_.assign(out, found.out);
    expected_ = offset->value + count;
    if (!found.whole)
        foreign(text, found.at, "hexadecimal");
}

void TextSource::repeat(std::uint64_t until) {
    std::uint64_t count = until - *expected_;
    if (count > kMaxRepeated) {
        report_(fmt::format("line {}: {} repeated bytes; the first {} are taken", repeated_, count,
                            kMaxRepeated));
        count = kMaxRepeated;
    }
    const auto size = static_cast<std::size_t>(count);
    std::uint8_t* const out = room(size);
    for (std::size_t i = 0; i < size; ++i)
        out[i] = last_[i % last_.size()];
    size_ += size;
    expected_ = until;
    repeated_ = 0;
}

void TextSource::endRepetition() {
    if (repeated_ != 0)
        report_(fmt::format("line {}: nothing tells how many lines are repeated", repeated_));
    repeated_ = 0;
}

void TextSource::takeList(std::string_view text, std::size_t at) {
    std::uint8_t* out = room(text.size() / 2);
    const char* fault = nullptr;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        const std::string_view two = text.substr(at, 2);
        if (comment_ || two == "/*") {
            comment_ = two != "*/";
            at += two == "*/" || two == "/*";
        } else if (c == '#' || two == "//") {
            skipping_ = true;
            break;
        } else if (isPrefixed(text, at)) {
            const std::size_t end = skipHex(text, at + 2);
            const std::size_t digits = end - at - 2;
            const char after = end < text.size() ? text[end] : ' ';
            if (after == ':') { // an address
                at = end;
                continue;
            }
            if (digits == 0 || digits > kMaxOffset || isWord(after) ||
                (digits > 1 && digits % 2 != 0)) {
                fault = "a number has an even number of hexadecimal digits";
                break;
            }
            if (digits == 1)
                *out++ = hexValue(text[at + 2]);
            else
                out = scan(text.substr(0, end), at + 2, 0, reversed(form_), out).out;
            at = end - 1;
            listed_ = 'x';
        } else if (listed_ == ',' && c != '{' && c != '}' && !isSpace(c)) {
            fault = "a number begins with 0x";
            break;
        } else if (!isSpace(c)) {
            while (isWord(c) && at + 1 < text.size() && isWord(text[at + 1]))
                ++at;
            listed_ = c == '{' || (c == ',' && listed_ == 'x') ? ',' : c;
        }
    }
    filled(out);
    if (fault) {
        wrong(at, fault);
        listed_ = 0;
    }
}

void TextSource::takeBase64(std::string_view text, std::size_t at) {
    if (!begun_ && text.substr(at).starts_with("--")) // the boundary of a mail's part
        return;
    std::uint8_t* out = room(text.size() + 2); // with a group that began before
    for (; at < text.size(); ++at) {
        for (; digitCount_ == 0 && at + 3 < text.size(); at += 4) {
            const std::uint32_t a = base64Value(text[at]), b = base64Value(text[at + 1]);
            const std::uint32_t c = base64Value(text[at + 2]), d = base64Value(text[at + 3]);
            if ((a | b | c | d) > 63)
                break;
            const std::uint32_t group = a << 18 | b << 12 | c << 6 | d;
            for (const unsigned shift : {16u, 8u, 0u})
                *out++ = static_cast<std::uint8_t>(group >> shift);
        }
        if (at == text.size())
            break;
        if (const std::uint8_t value = base64Value(text[at]); value < 64) {
            digits_ = digits_ << 6 | value;
            if (++digitCount_ < 4)
                continue;
            for (const unsigned shift : {16u, 8u, 0u})
                *out++ = static_cast<std::uint8_t>(digits_ >> shift);
            digitCount_ = 0;
        } else if (text[at] == '=') {
            filled(out);
            endGroup(at);
            out = room(text.size() - at);
        } else if (!isSpace(text[at])) {
            filled(out);
            foreign(text, at, "base64");
            digitCount_ = 0;
            return;
        }
    }
    filled(out);
}

// A last group of two or three digits is one or two bytes.
void TextSource::endGroup(std::size_t at) {
    if (digitCount_ == 1)
        wrong(at, "a base64 group has two digits or more");
    std::uint8_t* out = room(2);
    for (unsigned bits = 6 * digitCount_; bits >= 8; bits -= 8)
        *out++ = static_cast<std::uint8_t>(digits_ >> (bits - 8));
    filled(out);
    digitCount_ = 0;
}

std::string TextSource::place(std::size_t at) const {
    return fmt::format("line {}, column {}", line_, column_ + at + 1);
}

void TextSource::wrong(std::size_t at, std::string_view what) {
    report_(fmt::format("{}: {}; the rest of the line is ignored", place(at), what));
    skipping_ = true;
}

void TextSource::foreign(std::string_view text, std::size_t at, std::string_view digit) {
    wrong(at, isHex(text[at]) ? "a byte has two digits"
              : mpu::isPrintable(text[at])
                  ? fmt::format("\"{}\" is not a {} digit", text[at], digit)
                  : fmt::format("byte 0x{:02X} is not a {} digit",
                                static_cast<unsigned char>(text[at]), digit));
}

// After what is decoded; as much must be there.
std::uint8_t* TextSource::room(std::size_t count) {
    if (bytes_.size() < size_ + count)
        bytes_.resize(size_ + count);
    return bytes_.data() + size_;
}

// ---- which form a text has ----------------------------------------------------------------------

namespace {

constexpr std::size_t kSeen = 1024; // of a line
// Bytes that decide: the shortest message. A shorter text may hold a bare record, or be compressed.
constexpr std::size_t kDecisive = mpu::message_header::kSize + sizeof(EmpEvLogMsg_s);
constexpr std::size_t kDecisiveAll = 64;

enum Candidate : std::uint8_t { Colon, Column16, Column8, Column10, List, Plain, Base64, kAll };

constexpr TextForm kForms[kAll] = {
    {TextForm::Colon}, {TextForm::Column, 16}, {TextForm::Column, 8}, {TextForm::Column, 10},
    {TextForm::List},  {TextForm::Plain},      {TextForm::Base64},
};

// Lines in one form, not interrupted by others.
struct Run {
    std::size_t bytes = 0;
    std::size_t lines = 0;
    std::size_t start = 0; // of the text, when nothing else comes before
    std::uint64_t line = 1;
    std::uint64_t expected = 0; // offset in a dump
    std::size_t width = 1;      // bytes of a number; of base64, characters of a line
    // Offsets with "0x"; characters after a "|"; base64 digits that are no hexadecimal ones.
    bool marked = false;
};

// Digits of each of the numbers, 0 when they differ.
std::size_t numberWidth(std::string_view text, std::size_t at, std::size_t end) {
    std::size_t width = 0;
    for (at = skipBlanks(text, at); at < end && isHex(text[at]); at = skipBlanks(text, at)) {
        const std::size_t first = at;
        at = skipHex(text, at);
        if (width != 0 && width != at - first)
            return 0;
        width = at - first;
    }
    return width;
}

// Bytes in a line that holds only numbers with "0x", or 0.
std::size_t listedBytes(std::string_view text, std::size_t at) {
    if (const std::size_t brace = text.rfind('{'); brace != std::string_view::npos)
        at = brace + 1;
    std::size_t bytes = 0;
    for (;; ++at) {
        at = std::min(text.find_first_not_of(" \t\r,;()}", at), text.size());
        if (at == text.size() || text[at] == '#' || text[at] == '/')
            return bytes;
        if (!isPrefixed(text, at))
            return 0;
        const std::size_t first = at + 2;
        at = skipHex(text, first);
        if (at == first || (at < text.size() && isWord(text[at])))
            return 0;
        if (at == text.size() || text[at] != ':')
            bytes += (at - first + 1) / 2;
        if (at == text.size())
            return bytes;
    }
}

bool isControl(char c) {
    return (static_cast<unsigned char>(c) < ' ' && !isSpace(c) && c != '\b' && c != '\x1B') ||
           c == '\x7F';
}

} // namespace

// The forms that the lines seen so far are in.
class TextRecogniser::Forms {
public:
    // Takes a line, or its beginning.
    void look(std::string_view text, std::size_t start, std::uint64_t line);
    // `whole`: no other line is to come.
    bool decide(bool whole, RecognisedText& found) const;

private:
    bool lookAtDump(Candidate candidate, std::string_view text, std::size_t at);
    void lookAtBase64(std::string_view text, std::size_t at);
    void count(Candidate candidate, std::size_t bytes);
    void interrupt(Candidate candidate);

    std::array<Run, kAll> runs_;
    std::array<std::uint8_t, kSeen> scratch_;
    std::size_t start_ = 0; // of the line
    std::uint64_t line_ = 0;
    std::uint64_t firstLine_ = 0; // with more than a comment
    bool repeated_ = false;       // the line before was "*"
};

void TextRecogniser::Forms::look(std::string_view text, std::size_t start, std::uint64_t line) {
    start_ = start;
    line_ = line;
    const std::size_t at = skipQuote(text);
    if (at == text.size() || text[at] == '#')
        return;
    firstLine_ = firstLine_ ? firstLine_ : line;
    const bool repeated = text[at] == '*' && skipBlanks(text, at + 1) == text.size();
    if (!repeated) {
        bool dump = false;
        for (const Candidate candidate : {Colon, Column16, Column8, Column10})
            dump = lookAtDump(candidate, text, at) || dump;
        if (const std::size_t bytes = listedBytes(text, at); bytes != 0)
            count(List, bytes);
        else
            interrupt(List);
        if (const Scan found = scan(text, at, 0, 0, scratch_.data()); found.whole && !dump)
            count(Plain, static_cast<std::size_t>(found.out - scratch_.data()));
        else
            interrupt(Plain);
        lookAtBase64(text, at);
    }
    repeated_ = repeated;
}

bool TextRecogniser::Forms::lookAtDump(Candidate candidate, std::string_view text, std::size_t at) {
    const bool colon = candidate == Colon;
    const std::optional<Offset> offset = readOffset(text, at, kForms[candidate].radix, colon);
    if (!offset)
        return false;
    const Scan found =
        scan(text, offset->end, colon ? kColonBlanks : kColumnBlanks, 0, scratch_.data());
    const auto bytes = static_cast<std::size_t>(found.out - scratch_.data());
    const std::size_t width = numberWidth(text, offset->end, found.at);
    // Columns of equal width are no offsets and bytes.
    if (!found.whole || (!colon && bytes != 0 && (width == 0 || width == offset->digits)))
        return false;
    Run& run = runs_[candidate];
    std::uint64_t gap = 0;
    if (repeated_ && run.lines != 0 && offset->value > run.expected)
        gap = std::min(offset->value - run.expected, kMaxRepeated);
    else if (offset->value != run.expected && offset->value != 0) {
        interrupt(candidate);
        if (run.lines != 0)
            return true;
    }
    if (bytes == 0 && run.lines == 0)
        return false;
    count(candidate, bytes + static_cast<std::size_t>(gap));
    run.expected = offset->value + bytes;
    if (run.lines == 1)
        run.width = std::max<std::size_t>(width / 2, 1);
    run.marked = run.marked ||
                 (colon ? isPrefixed(text, at) : found.at < text.size() && text[found.at] == '|');
    return true;
}

// Lines of equal width; the last one may be shorter.
void TextRecogniser::Forms::lookAtBase64(std::string_view text, std::size_t at) {
    constexpr std::size_t kNarrowest = 16;
    Run& run = runs_[Base64];
    std::size_t end = at;
    bool beyondHex = false;
    for (; end < text.size() && base64Value(text[end]) < 64; ++end)
        beyondHex = beyondHex || !isHex(text[end]);
    const std::size_t width = end - at;
    while (end < text.size() && text[end] == '=')
        ++end;
    const bool isLast = run.lines != 0 && width < run.width;
    const bool isBase64 = skipBlanks(text, end) == text.size() && (isLast || width >= kNarrowest);
    if (!isBase64 || (!isLast && width != run.width))
        interrupt(Base64);
    if (!isBase64)
        return;
    count(Base64, width * 3 / 4);
    run.width = isLast ? 0 : width;
    run.marked = run.marked || beyondHex;
}

void TextRecogniser::Forms::count(Candidate candidate, std::size_t bytes) {
    Run& run = runs_[candidate];
    if (run.lines++ == 0 && line_ != firstLine_) {
        run.start = start_;
        run.line = line_;
    }
    run.bytes += bytes;
}

// What is enough by itself stays.
void TextRecogniser::Forms::interrupt(Candidate candidate) {
    if (runs_[candidate].bytes < kDecisiveAll)
        runs_[candidate] = {};
}

bool TextRecogniser::Forms::decide(bool whole, RecognisedText& found) const {
    // Of the radixes, in most of which most offsets don't follow, the one with most lines.
    const auto fewer = [](const Run& a, const Run& b) { return a.lines < b.lines; };
    const Run* const first = &runs_[Column16];
    const Run* const column = std::max_element(first, &runs_[Column10] + 1, fewer);
    const bool settled = std::count_if(first, &runs_[Column10] + 1, [&](const Run& run) {
                             return run.lines == column->lines;
                         }) == 1;
    for (std::size_t i = 0; i < kAll; ++i) {
        const Run& run = runs_[i];
        const bool isColumn = kForms[i].kind == TextForm::Column;
        if (run.bytes < (whole ? kDecisiveAll : kDecisive) ||
            (isColumn && (&run != column || !(settled || whole))) || (i == Base64 && !run.marked))
            continue;
        found.form = kForms[i];
        found.start = run.start;
        found.line = run.line;
        if (isColumn || i == Colon)
            found.form.width = static_cast<unsigned>(run.width);
        found.name = i == Colon       ? run.marked ? "tcpdump text" : "xxd text"
                     : i == List      ? "a list of 0x numbers"
                     : i == Plain     ? "hex text"
                     : i == Base64    ? "base64 text"
                     : run.marked     ? "hexdump -C text"
                     : run.width == 1 ? "od -tx1 text"
                                      : "hexdump text";
        return true;
    }
    return false;
}

TextRecogniser::TextRecogniser() : forms_(new Forms) {}
TextRecogniser::~TextRecogniser() = default;

TextVerdict TextRecogniser::look(std::string_view text, bool whole, RecognisedText& found) {
    const std::size_t begin = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; // UTF-8's byte order mark
    const auto decides = [&](std::size_t end) {
        const bool decided = forms_->decide(whole && end == text.size(), found);
        found.start = std::max(found.start, begin);
        found.end = end;
        return decided;
    };
    at_ = std::max(at_, begin);
    while (at_ < text.size()) {
        const std::size_t end = text.find('\n', at_);
        std::string_view seen = text.substr(at_, std::min(end - at_, kSeen));
        if (std::any_of(seen.begin(), seen.end(), isControl))
            return TextVerdict::Binary;
        const bool unfinished = end == text.npos && !whole;
        if (looked_ <= at_ && !(unfinished && seen.size() < kSeen)) {
            looked_ = at_ + 1;
            const std::size_t seenEnd = at_ + seen.size();
            if (seen.size() == kSeen)
                seen = seen.substr(0, separableHex(seen));
            forms_->look(seen, at_, ++line_);
            if (decides(seenEnd))
                return TextVerdict::Found;
        }
        if (unfinished)
            return TextVerdict::Undecided;
        at_ = std::min(end, text.size() - 1) + 1;
    }
    if (!whole)
        return TextVerdict::Undecided;
    return decides(text.size()) ? TextVerdict::Found : TextVerdict::Foreign;
}

} // namespace Pegasus::capture
