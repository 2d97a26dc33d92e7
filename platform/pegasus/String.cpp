#include <Pegasus/Common/Exception.h>
#include <Pegasus/Common/String.h>

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <utility>

#ifdef __SSE2__
#include <immintrin.h>
#if __has_include(<sys/platform/x86.h>) && !defined(__clang__) // which lacks its _Bool
#include <sys/platform/x86.h>
#endif
#endif

namespace Pegasus {

// Caught as Exception: the framework does not publish this class either.
class PEGASUS_COMMON_LINKAGE NullPointer : public Exception {
public:
    NullPointer() : Exception("null pointer") {}
};

namespace {

constexpr Uint32 maximumSize = 0x20000000; // units
constexpr Uint32 minimumGrowth = 8;        // units

[[noreturn, gnu::cold]] void throwNullPointer() {
    throw NullPointer();
}

void requirePointer(const void* pointer) {
    if (pointer == nullptr)
        throwNullPointer();
}

Uint32 checkedSize(Uint64 size) {
    if (size > maximumSize)
        throw std::bad_alloc();
    return static_cast<Uint32>(size);
}

Uint32 lengthOf(const char* text) {
    requirePointer(text);
    return checkedSize(std::strlen(text));
}

Uint32 lengthOf(const Char16* text) {
    requirePointer(text);
    Uint64 length = 0;
    while (Uint16(text[length]) != 0)
        ++length;
    return checkedSize(length);
}

Uint32 roundedCapacity(Uint64 needed) {
    return std::bit_ceil(std::max(checkedSize(needed), minimumGrowth));
}

void moveUnits(Uint16* to, const void* from, Uint32 n) {
    std::memmove(to, from, n * sizeof *to);
}

Uint16 toLowerAscii(Uint16 unit) {
    return unit >= 'A' && unit <= 'Z' ? static_cast<Uint16>(unit + ('a' - 'A')) : unit;
}

// ---- UTF-8 to UTF-16 ----

// Widens the bytes in blocks of a size, the last of which may overlap the one before: no byte
// outside is read. False when one is not ASCII; what is written then counts for nothing.
template <class Block>
bool widenBlocks(const unsigned char* in, Uint32 n, Uint16* out) {
    constexpr Uint32 size = Block::size;
    for (Uint32 i = 0; i < n - size; i += size)
        if (!Block::widen(in + i, out + i))
            return false;
    return Block::widen(in + n - size, out + n - size);
}

template <class Word>
struct WordBlock {
    static constexpr Uint32 size = sizeof(Word);
    static bool widen(const unsigned char* in, Uint16* out) {
        Word bytes;
        std::memcpy(&bytes, in, sizeof bytes);
        for (Uint32 k = 0; k < size; ++k)
            out[k] = in[k];
        return (bytes & static_cast<Word>(0x8080808080808080)) == 0;
    }
};

#ifdef __SSE2__
struct VectorBlock {
    static constexpr Uint32 size = 32;
    static bool widen(const unsigned char* in, Uint16* out) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 16));
        __m128i* const units = reinterpret_cast<__m128i*>(out);
        _mm_storeu_si128(units, _mm_unpacklo_epi8(a, zero));
        _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(a, zero));
        _mm_storeu_si128(units + 2, _mm_unpacklo_epi8(b, zero));
        _mm_storeu_si128(units + 3, _mm_unpackhi_epi8(b, zero));
        return _mm_movemask_epi8(_mm_or_si128(a, b)) == 0;
    }
};
#ifdef CPU_FEATURE_ACTIVE
// What the vector units of most machines can do. The C library knows whether this one has it;
// asking the compiler's library instead would make it run code when ours is loaded.
struct WideBlock {
    static constexpr Uint32 size = 64;
    __attribute__((target("avx2"))) static bool widen(const unsigned char* in, Uint16* out) {
        const __m128i* const bytes = reinterpret_cast<const __m128i*>(in);
        __m256i* const units = reinterpret_cast<__m256i*>(out);
        const __m128i a = _mm_loadu_si128(bytes);
        const __m128i b = _mm_loadu_si128(bytes + 1);
        const __m128i c = _mm_loadu_si128(bytes + 2);
        const __m128i d = _mm_loadu_si128(bytes + 3);
        _mm256_storeu_si256(units, _mm256_cvtepu8_epi16(a));
        _mm256_storeu_si256(units + 1, _mm256_cvtepu8_epi16(b));
        _mm256_storeu_si256(units + 2, _mm256_cvtepu8_epi16(c));
        _mm256_storeu_si256(units + 3, _mm256_cvtepu8_epi16(d));
        const __m128i seen = _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d));
        return _mm_movemask_epi8(seen) == 0;
    }
};
__attribute__((target("avx2"))) bool widenWide(const unsigned char* in, Uint32 n, Uint16* out) {
    for (Uint32 i = 0; i < n - WideBlock::size; i += WideBlock::size)
        if (!WideBlock::widen(in + i, out + i))
            return false;
    return WideBlock::widen(in + n - WideBlock::size, out + n - WideBlock::size);
}
#endif
struct HalfVectorBlock {
    static constexpr Uint32 size = 8;
    static bool widen(const unsigned char* in, Uint16* out) {
        const __m128i a = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(in));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                         _mm_unpacklo_epi8(a, _mm_setzero_si128()));
        return (_mm_movemask_epi8(a) & 0xFF) == 0;
    }
};
struct QuarterVectorBlock {
    static constexpr Uint32 size = 4;
    static bool widen(const unsigned char* in, Uint16* out) {
        std::uint32_t bytes;
        std::memcpy(&bytes, in, sizeof bytes);
        const __m128i a = _mm_cvtsi32_si128(static_cast<int>(bytes));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out),
                         _mm_unpacklo_epi8(a, _mm_setzero_si128()));
        return (bytes & 0x80808080) == 0;
    }
};
#else
using VectorBlock = WordBlock<std::uint64_t>;
using HalfVectorBlock = WordBlock<std::uint64_t>;
using QuarterVectorBlock = WordBlock<std::uint32_t>;
#endif

bool widenIfShortAscii(const unsigned char* in, Uint32 n, Uint16* out) {
    if (n >= HalfVectorBlock::size)
        return widenBlocks<HalfVectorBlock>(in, n, out);
    if (n >= QuarterVectorBlock::size)
        return widenBlocks<QuarterVectorBlock>(in, n, out);
    unsigned seen = 0;
    for (Uint32 i = 0; i < n; ++i) {
        out[i] = in[i];
        seen |= in[i];
    }
    return seen < 0x80;
}

// Nearly all text is ASCII throughout.
bool widenIfAscii(const unsigned char* in, Uint32 n, Uint16* out) {
#ifdef CPU_FEATURE_ACTIVE
    if (n >= WideBlock::size && CPU_FEATURE_ACTIVE(AVX2))
        return widenWide(in, n, out);
#endif
    if (n >= VectorBlock::size)
        return widenBlocks<VectorBlock>(in, n, out);
    return widenIfShortAscii(in, n, out);
}

struct Sequence {
    char32_t character;
    Uint32 length; // bytes; 0: not UTF-8
};

// One character that begins with a byte above 7F; n > 0.
Sequence decodeSequence(const unsigned char* in, Uint32 n) {
    constexpr Sequence refused{0, 0};
    const Uint32 length = in[0] < 0xE0 ? 2 : in[0] < 0xF0 ? 3 : 4;
    if (in[0] < 0xC2 || in[0] > 0xF4 || n < length)
        return refused;
    char32_t character = in[0] & (0x7Fu >> length);
    for (Uint32 k = 1; k < length; ++k) {
        if ((in[k] & 0xC0) != 0x80)
            return refused;
        character = character << 6 | (in[k] & 0x3Fu);
    }
    // Overlong forms; two bytes cannot be, from C2 on.
    if ((length == 3 && character < 0x800) || (length == 4 && character < 0x10000) ||
        character > 0x10FFFF)
        return refused;
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (isSurrogate || character == 0xFFFE || character == 0xFFFF)
        character = 0xFFFD;
    return {character, length};
}

struct Decoded {
    Uint32 bytes; // less than given: a sequence that is not UTF-8 begins here
    Uint32 units;
};

// The output must have room for n units: no character has more units than bytes.
Decoded decodeUtf8(const unsigned char* in, Uint32 n, Uint16* out) {
    if (widenIfAscii(in, n, out))
        return {n, n};
    Uint32 i = 0;
    Uint32 o = 0;
    while (i < n) {
        if (in[i] < 0x80) {
            out[o++] = in[i++];
            continue;
        }
        const Sequence next = decodeSequence(in + i, n - i);
        if (next.length == 0)
            break;
        i += next.length;
        if (next.character < 0x10000) {
            out[o++] = static_cast<Uint16>(next.character);
        } else {
            out[o++] = static_cast<Uint16>(0xD7C0 + (next.character >> 10));
            out[o++] = static_cast<Uint16>(0xDC00 + (next.character & 0x3FF));
        }
    }
    return {i, o};
}

[[noreturn, gnu::cold]] void throwNotUtf8(const unsigned char* text, Uint32 n, Uint32 bad) {
    constexpr Uint32 bytesBefore = 40;
    constexpr Uint32 bytesAfter = 10;
    char buffer[160];
    std::snprintf(buffer, sizeof buffer,
                  "The byte sequence starting at index %u is not valid UTF-8 encoding: ", bad);
    std::string message = buffer;
    // What precedes is UTF-8 from the next character on.
    Uint32 from = bad > bytesBefore ? bad - bytesBefore : 0;
    while (from < bad && (text[from] & 0xC0) == 0x80)
        ++from;
    for (; from < bad && text[from] != 0; ++from)
        message += static_cast<char>(text[from]);
    for (Uint32 i = bad; i < n && i <= bad + bytesAfter; ++i) {
        std::snprintf(buffer, sizeof buffer, " 0x%02X", text[i]);
        message += buffer;
    }
    throw Exception(String(message.c_str()));
}

// ---- UTF-16 to UTF-8 ----

// Converts the ASCII units at the start of the input and returns their number.
Uint32 narrowAscii(const Uint16* in, Uint32 n, char* out) {
    Uint32 i = 0;
#ifdef __SSE2__
    const __m128i notAscii = _mm_set1_epi16(static_cast<short>(0xFF80));
    for (; n - i >= 16; i += 16) {
        const __m128i* const units = reinterpret_cast<const __m128i*>(in + i);
        const __m128i a = _mm_loadu_si128(units);
        const __m128i b = _mm_loadu_si128(units + 1);
        const __m128i high = _mm_and_si128(_mm_or_si128(a, b), notAscii);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(high, _mm_setzero_si128())) != 0xFFFF)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(a, b));
    }
#endif
    for (; n - i >= 4; i += 4) {
        std::uint64_t units;
        std::memcpy(&units, in + i, sizeof units);
        if ((units & 0xFF80FF80FF80FF80) != 0)
            break;
        for (Uint32 k = 0; k < 4; ++k)
            out[i + k] = static_cast<char>(in[i + k]);
    }
    for (; i < n && in[i] < 0x80; ++i)
        out[i] = static_cast<char>(in[i]);
    return i;
}

// The output must have room for three bytes a unit; returns its end. A lone surrogate is written
// like any other unit, unless it is a high one at the very end: that one is left out.
char* encodeUtf8(const Uint16* in, Uint32 n, char* out) {
    Uint32 i = 0;
    while (i < n) {
        const Uint32 ascii = narrowAscii(in + i, n - i, out);
        i += ascii;
        out += ascii;
        while (i < n && in[i] >= 0x80) {
            char32_t character = in[i++];
            if ((character & 0xFC00) == 0xD800) {
                if (i == n)
                    return out;
                if ((in[i] & 0xFC00) == 0xDC00)
                    character = (character - 0xD7C0) << 10 | (in[i++] & 0x3FFu);
            }
            const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
            if (character < 0x800) {
                put(0xC0 | character >> 6);
            } else {
                if (character < 0x10000) {
                    put(0xE0 | character >> 12);
                } else {
                    put(0xF0 | character >> 18);
                    put(0x80 | (character >> 12 & 0x3F));
                }
                put(0x80 | (character >> 6 & 0x3F));
            }
            put(0x80 | (character & 0x3F));
        }
    }
    return out;
}

// ---- Comparing ----

// Up to n units, or up to the first NUL; both texts are terminated.
template <typename Fold>
int compareUnits(const Uint16* a, const Uint16* b, Uint32 n, Fold fold) {
    for (Uint32 i = 0; i < n; ++i) {
        const int difference = fold(a[i]) - fold(b[i]);
        if (difference != 0 || a[i] == 0)
            return difference;
    }
    return 0;
}

} // namespace

// ---- CString ----

CString::CString(const CString& other) : text_(nullptr) {
    if (other.text_ != nullptr) {
        const std::size_t size = std::strlen(other.text_) + 1;
        text_ = new char[size];
        std::memcpy(text_, other.text_, size);
    }
}

CString& CString::operator=(const CString& other) {
    CString copy(other);
    std::swap(text_, copy.text_);
    return *this;
}

// ---- String: blocks ----

constinit const String::Block String::emptyBlock{};

// constexpr: nothing to destroy at exit. A reference to it, because a constexpr class member would
// be an inline variable, which GCC makes a "unique" symbol, and those forbid unloading a library.
namespace {
constexpr String emptyText;
}
constinit const String& String::EMPTY = emptyText;

String::Block* String::allocate(Uint64 capacity) {
    if (capacity <= ownCapacity) {
        Block* const block = ::new (own_) Block{ownReferences, 0, ownCapacity, {}};
        return block;
    }
    const Uint32 checked = checkedSize(capacity);
    void* const memory = ::operator new(sizeof(Block) + checked * sizeof(Uint16));
    return ::new (memory) Block{1, 0, checked, {}};
}

String::Block* String::shareBlock(const String& other) {
    if (other.isOwn()) {
        std::memcpy(own_, other.own_, blockHeader + (other.size() + 1) * sizeof(Uint16));
        return own();
    }
    if (other.block_ != &emptyBlock)
        other.block_->references.fetch_add(1, std::memory_order_relaxed);
    return other.block_;
}

void String::deallocate(Block* block) {
    ::operator delete(block); // NOLINT(clang-analyzer-cplusplus.NewDelete): never the empty one
}

// Afterwards the block is ours alone, holds the same text and has the capacity.
void String::makeWritable(Uint32 capacity) {
    if (block_->isWritable(capacity))
        return;
    Block* const own = allocate(std::max(capacity, block_->size));
    moveUnits(own->units, block_->units, block_->size);
    own->setSize(block_->size);
    replaceBlock(own);
}

[[gnu::cold]] void String::throwIndexOutOfBounds() {
    throw IndexOutOfBoundsException();
}

// ---- String: construction and assignment ----

String::String(const String& other, Uint32 n) : String() {
    if (n > other.size())
        throwIndexOutOfBounds();
    *this = other.subString(0, n);
}

String::String(const char* text) : String() {
    assign(text);
}

String::String(const char* text, Uint32 n) : String() {
    assign(text, n);
}

String::String(const Char16* text) : String() {
    assign(text);
}

String::String(const Char16* text, Uint32 n) : String() {
    assign(text, n);
}

String& String::assign(const String& other) {
    if (this != &other) {
        release(block_);
        block_ = shareBlock(other);
    }
    return *this;
}

String& String::assign(const char* text) {
    return assign(text, lengthOf(text));
}

String& String::assign(const char* text, Uint32 n) {
    requirePointer(text);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
    // Most texts of an event take this way.
    if (n <= ownCapacity && (block_ == &emptyBlock || isOwn())) {
        Block* const block = ::new (own_) Block{ownReferences, 0, ownCapacity, {}};
        if (widenIfShortAscii(bytes, n, block->units)) {
            block->setSize(n);
            block_ = block;
            return *this;
        }
    }
    return assignUtf8(bytes, n);
}

String& String::assignUtf8(const unsigned char* bytes, Uint32 n) {
    if (n == 0) {
        clear();
        return *this;
    }
    // No more units than bytes, and for ASCII just as many.
    if (!block_->isWritable(n))
        replaceBlock(allocate(n));
    const Decoded decoded = decodeUtf8(bytes, n, block_->units);
    if (decoded.bytes < n) {
        clear();
        throwNotUtf8(bytes, n, decoded.bytes);
    }
    block_->setSize(decoded.units);
    return *this;
}

String& String::assign(const Char16* text) {
    return assign(text, lengthOf(text));
}

String& String::assign(const Char16* text, Uint32 n) {
    requirePointer(text);
    // The text may be in our own block: that one goes last.
    Block* const target = block_->isWritable(n) ? block_ : allocate(n);
    moveUnits(target->units, text, n);
    target->setSize(n);
    if (target != block_)
        replaceBlock(target);
    return *this;
}

void String::clear() {
    if (block_->isWritable(0))
        block_->setSize(0);
    else
        replaceBlock(const_cast<Block*>(&emptyBlock));
}

void String::reserveCapacity(Uint32 n) {
    makeWritable(roundedCapacity(n));
}

// ---- String: access ----

CString String::getCString() const {
    // Nearly all text is ASCII: only the rest is given three bytes a unit.
    const Uint16* const units = block_->units;
    const Uint32 n = size();
    std::unique_ptr<char[]> text(new char[n + 1]);
    const Uint32 ascii = narrowAscii(units, n, text.get());
    char* end = text.get() + ascii;
    if (ascii < n) {
        std::unique_ptr<char[]> longer(new char[ascii + (n - ascii) * std::size_t{3} + 1]);
        std::memcpy(longer.get(), text.get(), ascii);
        text = std::move(longer);
        end = encodeUtf8(units + ascii, n - ascii, text.get() + ascii);
    }
    *end = '\0';
    return CString(text.release());
}

Char16& String::operator[](Uint32 index) {
    if (index > size())
        throwIndexOutOfBounds();
    makeWritable(0);
    return *asChar16(block_->units + index);
}

String String::subString(Uint32 index, Uint32 n) const {
    if (index >= size())
        return String();
    n = std::min(n, size() - index);
    return n == size() ? *this : String(getChar16Data() + index, n);
}

Uint32 String::find(Char16 unit) const {
    return find(0, unit);
}

Uint32 String::find(Uint32 index, Char16 unit) const {
    if (index > size())
        throwIndexOutOfBounds();
    const Uint16* const units = block_->units;
    const Uint16* const end = units + size();
    const Uint16* const found = std::find(units + index, end, Uint16(unit));
    return found == end ? PEG_NOT_FOUND : static_cast<Uint32>(found - units);
}

Uint32 String::find(const String& other) const {
    const Uint16* const units = block_->units;
    const Uint16* const end = units + size();
    const Uint16* const text = other.block_->units;
    const Uint16* const found = std::search(units, end, text, text + other.size());
    return found == end || other.size() == 0 ? PEG_NOT_FOUND : static_cast<Uint32>(found - units);
}

Uint32 String::reverseFind(Char16 unit) const {
    for (Uint32 i = size(); i > 0; --i)
        if (block_->units[i - 1] == Uint16(unit))
            return i - 1;
    return PEG_NOT_FOUND;
}

// ---- String: changes ----

String& String::append(const Char16& unit) {
    return append(&unit, 1);
}

String& String::append(const Char16* text, Uint32 n) {
    requirePointer(text);
    const Uint32 oldSize = size();
    const Uint32 newSize = checkedSize(Uint64{oldSize} + n);
    // The text may be in our own block: that one goes last.
    Block* target = block_;
    if (!block_->isWritable(newSize)) {
        target = allocate(roundedCapacity(newSize));
        moveUnits(target->units, block_->units, oldSize);
    }
    moveUnits(target->units + oldSize, text, n);
    target->setSize(newSize);
    if (target != block_)
        replaceBlock(target);
    return *this;
}

String& String::append(const String& other) {
    return append(other.getChar16Data(), other.size());
}

void String::appendPrintf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);
    append(String(text.c_str()));
}

void String::remove(Uint32 index, Uint32 n) {
    if (index > size())
        throwIndexOutOfBounds();
    const Uint32 rest = size() - index;
    if (n == PEG_NOT_FOUND)
        n = rest;
    if (n > rest)
        throwIndexOutOfBounds();
    makeWritable(0);
    moveUnits(block_->units + index, block_->units + index + n, rest - n);
    block_->setSize(size() - n);
}

void String::toLower() {
    makeWritable(0);
    for (Uint32 i = 0; i < size(); ++i)
        block_->units[i] = toLowerAscii(block_->units[i]);
}

// ---- Comparing ----

int String::compare(const String& a, const String& b) {
    return compare(a, b, PEG_NOT_FOUND);
}

int String::compare(const String& a, const String& b, Uint32 n) {
    return compareUnits(a.block_->units, b.block_->units, n, std::identity());
}

int String::compareNoCase(const String& a, const String& b) {
    return compareUnits(a.block_->units, b.block_->units, PEG_NOT_FOUND, toLowerAscii);
}

Boolean String::equal(const String& a, const String& b) {
    return a.size() == b.size() &&
           std::memcmp(a.block_->units, b.block_->units, a.size() * sizeof(Uint16)) == 0;
}

Boolean String::equalNoCase(const String& a, const String& b) {
    const Uint16* const units = a.block_->units;
    return a.size() == b.size() &&
           std::equal(units, units + a.size(), b.block_->units,
                      [](Uint16 x, Uint16 y) { return toLowerAscii(x) == toLowerAscii(y); });
}

String operator+(const String& a, const String& b) {
    String both(a);
    both.append(b);
    return both;
}

std::ostream& operator<<(std::ostream& out, const String& text) {
    std::string bytes;
    for (Uint32 i = 0; i < text.size(); ++i) {
        const Uint16 unit = text[i];
        if (unit > 0 && unit <= 0xFF) {
            bytes += static_cast<char>(unit);
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%04X", unit);
            bytes += escape;
        }
        // Formatted output for the first unit, so that width and fill go there.
        if (i == 0) {
            out << bytes;
            bytes.clear();
        }
    }
    return out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

} // namespace Pegasus
