#include "event/TextWriter.h"

#include "event/Ascii.h"
#include "event/SafeText.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace Pegasus::mpu {

TextWriter::~TextWriter() {
    if (begin_ != room_)
        std::free(begin_);
}

[[gnu::cold]] void TextWriter::grow(std::size_t count) {
    const std::size_t used = static_cast<std::size_t>(next_ - begin_);
    const std::size_t held = static_cast<std::size_t>(end_ - begin_);
    const std::size_t size = held > count ? 2 * held : used + count + held;
    char* bigger = static_cast<char*>(std::realloc(begin_ == room_ ? nullptr : begin_, size));
    if (!bigger)
        throw std::bad_alloc();
    if (begin_ == room_)
        std::memcpy(bigger, room_, used);
    begin_ = bigger;
    next_ = bigger + used;
    end_ = bigger + size;
}

TextWriter& TextWriter::decimal(std::uint32_t value) {
    commit(putDecimal(reserve(kDecimalRoom), value));
    return *this;
}

TextWriter& TextWriter::decimal64(std::uint64_t value) {
    commit(putDecimal(reserve(kDecimalRoom), value));
    return *this;
}

TextWriter& TextWriter::integer(std::uint32_t value) {
    commit(putSigned(reserve(kDecimalRoom), static_cast<std::int32_t>(value)));
    return *this;
}

TextWriter& TextWriter::hexUpper(std::uint64_t value, unsigned minDigits) {
    commit(putHex(reserve(kHexRoom), value, minDigits, Case::Upper));
    return *this;
}

TextWriter& TextWriter::hexLower(std::uint64_t value, unsigned minDigits) {
    commit(putHex(reserve(kHexRoom), value, minDigits, Case::Lower));
    return *this;
}

TextWriter& TextWriter::hexBytes(std::string_view bytes) {
    commit(putHexBytes(reserve(2 * bytes.size()), bytes));
    return *this;
}

TextWriter& TextWriter::open(std::string_view tag) {
    char* out = reserve(tag.size() + 2);
    *out = '<';
    out = putText(out + 1, tag);
    *out = '>';
    commit(out + 1);
    return *this;
}

TextWriter& TextWriter::close(std::string_view tag) {
    char* out = putText(putText(reserve(tag.size() + 3), "</"), tag);
    *out = '>';
    commit(out + 1);
    return *this;
}

TextWriter& TextWriter::element(std::string_view tag, Untrusted value, std::string_view after) {
    return open(tag).untrusted(value).close(tag).literal(after);
}

char* putSafeRun(char* out, std::string_view text) {
    for (;;) {
        // "=" alone becomes two characters; the runs between are translated one for one.
        const std::size_t run = std::min(text.find('='), text.size());
        for (std::size_t i = 0; i < run; ++i)
            out[i] = kSafeCharacters[static_cast<unsigned char>(text[i])];
        out += run;
        if (run == text.size())
            return out;
        *out++ = ':';
        *out++ = ' ';
        text.remove_prefix(run + 1);
    }
}

TextWriter& TextWriter::untrusted(Untrusted from) {
    const std::string_view text = from.raw();
    if (sanitize_ == Sanitize::Yes && !markup_)
        markup_ = text.find('<') != std::string_view::npos;
    if (sanitize_ == Sanitize::No || markup_)
        return raw(from);
    commit(putSafeRun(reserve(2 * text.size()), text));
    return *this;
}

void putDump(TextWriter& out, std::string_view bytes) {
    constexpr std::size_t kHalf = 8;
    for (std::size_t at = 0; at < bytes.size(); at += 2 * kHalf) {
        const std::string_view group = bytes.substr(at, 2 * kHalf);
        out.literal("0x")
            .hexLower(at, 4)
            .literal("=")
            .hexBytes(group.substr(0, kHalf))
            .literal(" | ");
        out.hexBytes(group.substr(std::min(kHalf, group.size()))).literal(";");
    }
}

void TextWriter::assignTo(String& to) const {
    if (markup_) {
        StackWriter<1024> safe;
        putSafe(safe, view());
        assignText(to, safe.view()); // tags are written verbatim
    } else if (unchecked_) {
        assignText(to, view());
    } else {
        assignAscii(to, view());
    }
}

namespace {

// The length of the valid UTF-8 sequence at `at`, 0 when there is none.
std::size_t sequenceLength(const unsigned char* at, std::size_t left) {
    const unsigned char first = at[0];
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4 || length > left)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((at[i] & 0xC0) != 0x80)
            return 0;
    const bool overlong = (first == 0xE0 && at[1] < 0xA0) || (first == 0xF0 && at[1] < 0x90);
    const bool surrogate = first == 0xED && at[1] >= 0xA0;
    const bool beyond = first == 0xF4 && at[1] >= 0x90;
    return overlong || surrogate || beyond ? 0 : length;
}

// Whether no byte has its high bit; nearly all texts are so.
bool isAscii(std::string_view text) {
    using Word = std::uint64_t;
    const auto word = [&](std::size_t at) {
        Word bytes;
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        return bytes;
    };
    Word seen = 0;
    if (text.size() >= sizeof seen) {
        for (std::size_t at = 0; at < text.size() - sizeof seen; at += sizeof seen)
            seen |= word(at);
        seen |= word(text.size() - sizeof seen); // overlaps the one before
    } else {
        for (char c : text)
            seen |= static_cast<unsigned char>(c);
    }
    return (seen & 0x8080808080808080u) == 0;
}

// The length of the valid UTF-8 text at the start of `text`.
std::size_t validLength(std::string_view text) {
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t length = sequenceLength(bytes + at, text.size() - at);
        if (length == 0)
            break;
        at += length;
    }
    return at;
}

} // namespace

void assignAscii(String& to, std::string_view text) {
    to.assign(text.empty() ? "" : text.data(), static_cast<Uint32>(text.size()));
}

namespace {

[[gnu::cold]] void repair(char* text, std::size_t size) {
    for (;;) {
        const std::size_t valid = validLength({text, size});
        if (valid == size)
            return;
        text[valid] = '?';
        text += valid + 1;
        size -= valid + 1;
    }
}

[[gnu::cold]] void assignMended(String& to, std::string_view text) {
    StackWriter<1024> mended;
    for (;;) {
        const std::size_t valid = validLength(text);
        mended.literal(text.substr(0, valid));
        if (valid == text.size())
            break;
        mended.literal("?");
        text.remove_prefix(valid + 1);
    }
    assignAscii(to, mended.view());
}

} // namespace

std::string_view TextWriter::finish() {
    if (markup_) {
        StackWriter<1024> safe;
        putSafe(safe, view());
        clear();
        raw(Untrusted(safe.view()));
    }
    if (unchecked_ && !isAscii(view()))
        repair(begin_, view().size());
    return view();
}

void assignText(String& to, std::string_view text) {
    if (isAscii(text)) [[likely]]
        assignAscii(to, text);
    else
        assignMended(to, text);
}

} // namespace Pegasus::mpu
