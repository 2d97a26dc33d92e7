// The CIM framework's text classes, for builds without an installed framework: Char16, CString and
// String. Same names, same calls, same results; a call that compiles here compiles there.
//
// A String is UTF-16 in the machine's byte order. Sizes and indexes count 16-bit code units, so a
// character above U+FFFF counts as two. A short text is in the String itself; copies of a longer
// one share one buffer with an atomic reference count. Different String objects may be used by
// different threads without care, one object may not be changed while another thread uses it.
//
// Errors: what takes a char pointer throws Exception when the bytes are not UTF-8; whatever takes a
// pointer throws an Exception ("null pointer") when it is null; an index out of range throws
// IndexOutOfBoundsException; a String of more than 0x20000000 units throws std::bad_alloc.

#ifndef Pegasus_String_h
#define Pegasus_String_h

#include <Pegasus/Common/Config.h>

#include <atomic>
#include <iosfwd>
#include <type_traits>

namespace Pegasus {

/// One UTF-16 code unit, unchecked. A char converts with its sign: go through unsigned char.
class PEGASUS_COMMON_LINKAGE Char16 {
public:
    Char16() : unit_(0) {}
    Char16(Uint16 unit) : unit_(unit) {}
    // Written out on purpose: the framework's Char16 is not trivially copyable either.
    Char16(const Char16& other) : unit_(other.unit_) {}
    ~Char16() {}

    Char16& operator=(const Char16& other) {
        unit_ = other.unit_;
        return *this;
    }
    Char16& operator=(Uint16 unit) {
        unit_ = unit;
        return *this;
    }

    operator Uint16() const { return unit_; }

    friend Boolean operator==(const Char16& a, const Char16& b) { return a.unit_ == b.unit_; }
    friend Boolean operator==(const Char16& a, char b) { return a == Char16(Uint16(b)); }
    friend Boolean operator==(char a, const Char16& b) { return b == a; }
    friend Boolean operator!=(const Char16& a, const Char16& b) { return !(a == b); }
    friend Boolean operator!=(const Char16& a, char b) { return !(a == b); }
    friend Boolean operator!=(char a, const Char16& b) { return !(b == a); }

private:
    Uint16 unit_;
};

static_assert(sizeof(Char16) == sizeof(Uint16) && sizeof(Uint16) == 2);

/// A NUL-terminated UTF-8 copy of a String, on the heap and owned by this object: the pointer lives
/// as long as the object. A copy ends at the first NUL. Only a default CString holds null.
class PEGASUS_COMMON_LINKAGE CString {
public:
    CString() : text_(nullptr) {}
    CString(const CString& other);
    ~CString() { delete[] text_; }

    CString& operator=(const CString& other);

    operator const char*() const { return text_; }

private:
    friend class String;

    explicit CString(char* text) : text_(text) {} // takes ownership

    char* text_;
};

class PEGASUS_COMMON_LINKAGE String {
public:
    /// Constant-initialised, so static initialisers of any source file may use it.
    static const String& EMPTY;

    constexpr String() : block_(const_cast<Block*>(&emptyBlock)) {
        if (std::is_constant_evaluated())
            for (unsigned char& byte : own_)
                byte = 0;
    }
    String(const String& other) : block_(shareBlock(other)) {}
    /// The first n units; n above size(): IndexOutOfBoundsException.
    String(const String& other, Uint32 n);
    /// UTF-8, up to the first NUL or exactly n bytes. Encoded surrogates, U+FFFE and U+FFFF become
    /// U+FFFD; bytes that are not UTF-8 throw Exception.
    String(const char* text);
    String(const char* text, Uint32 n);
    /// Code units, unchecked, up to the first 0 or exactly n.
    String(const Char16* text);
    String(const Char16* text, Uint32 n);
    // constexpr so that EMPTY needs no code run at exit.
    constexpr ~String() {
        if (!std::is_constant_evaluated())
            release(block_);
    }

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): assign() handles it
    String& operator=(const String& other) {
        assign(other);
        return *this;
    }

    /// After bytes that are not UTF-8 the String is empty, after a null pointer unchanged.
    String& assign(const String& other);
    String& assign(const char* text);
    String& assign(const char* text, Uint32 n);
    String& assign(const Char16* text);
    String& assign(const Char16* text, Uint32 n);

    void clear();

    /// Makes room for n units, rounded up to a power of two; never shrinks.
    void reserveCapacity(Uint32 n);

    Uint32 size() const { return block_->size; }

    /// size() units and a terminating 0; lives until the String changes.
    const Char16* getChar16Data() const { return asChar16(block_->units); }

    CString getCString() const;

    /// An index equal to size() gives the terminating 0. The non-const form unshares the buffer,
    /// even if the unit is only read.
    Char16& operator[](Uint32 index);
    const Char16 operator[](Uint32 index) const {
        if (index > block_->size)
            throwIndexOutOfBounds();
        return Char16(block_->units[index]);
    }

    String& append(const Char16& unit);
    String& append(const Char16* text, Uint32 n);
    String& append(const String& other);

    /// The formatted text is UTF-8. Avoid: the installed framework garbles it beyond 255 bytes.
    void appendPrintf(const char* format, ...) PEGASUS_FORMAT(2, 3);

    /// More units than there are: IndexOutOfBoundsException, nothing removed.
    void remove(Uint32 index, Uint32 n = PEG_NOT_FOUND);

    /// Cut to what is there: never throws for its range.
    String subString(Uint32 index, Uint32 n = PEG_NOT_FOUND) const;

    /// An index or PEG_NOT_FOUND. An empty String is never found.
    Uint32 find(Char16 unit) const;
    Uint32 find(Uint32 index, Char16 unit) const;
    Uint32 find(const String& other) const;
    Uint32 reverseFind(Char16 unit) const;

    /// A to Z only.
    void toLower();

    /// By code unit, up to the first NUL (or n units); only the sign of the result counts.
    static int compare(const String& a, const String& b);
    static int compare(const String& a, const String& b, Uint32 n);
    static int compareNoCase(const String& a, const String& b);

    /// Size and all units, NULs included. NoCase: A to Z only.
    static Boolean equal(const String& a, const String& b);
    static Boolean equalNoCase(const String& a, const String& b);

    friend Boolean operator==(const String& a, const String& b) { return equal(a, b); }
    friend Boolean operator==(const String& a, const char* b) { return equal(a, b); }
    friend Boolean operator==(const char* a, const String& b) { return equal(a, b); }
    friend Boolean operator!=(const String& a, const String& b) { return !equal(a, b); }
    friend Boolean operator<(const String& a, const String& b) { return compare(a, b) < 0; }
    friend Boolean operator<=(const String& a, const String& b) { return compare(a, b) <= 0; }
    friend Boolean operator>(const String& a, const String& b) { return compare(a, b) > 0; }
    friend Boolean operator>=(const String& a, const String& b) { return compare(a, b) >= 0; }

private:
    // The units, `capacity` of them and the terminator, follow. `references` counts the owners of a
    // block on the heap. A block with 0 references is the constant empty one: it is neither
    // counted, written nor freed.
    struct Block {
        std::atomic<Uint32> references;
        Uint32 size;
        Uint32 capacity;
        Uint16 units[1];

        void setSize(Uint32 newSize) {
            size = newSize;
            units[newSize] = 0;
        }
        Boolean isWritable(Uint32 neededCapacity) const {
            const Uint32 owners = references.load(std::memory_order_acquire);
            return (owners == 1 || owners == ownReferences) && capacity >= neededCapacity;
        }
    };
    // The block inside a String: it makes a String 64 bytes long on a 64-bit machine.
    static constexpr Uint32 ownReferences = 0xFFFFFFFF;
    static constexpr Uint32 ownCapacity = 21;
    static constexpr Uint32 blockHeader = 3 * sizeof(Uint32);

    static const Block emptyBlock;

    // A block for a text that block_ can't take: our own where that is large enough.
    PEGASUS_HIDDEN Block* allocate(Uint64 capacity);
    static void deallocate(Block* block);

    Block* own() { return reinterpret_cast<Block*>(own_); }
    Boolean isOwn() const {
        return block_->references.load(std::memory_order_relaxed) == ownReferences;
    }

    // The block of `other`, or a copy of it in our own, which must be free.
    Block* shareBlock(const String& other);

    static Char16* asChar16(Uint16* units) { return reinterpret_cast<Char16*>(units); }

    static void release(Block* block) {
        const Uint32 references = block->references.load(std::memory_order_acquire);
        if (references == 0 || references == ownReferences)
            return;
        // The only owner needs no read-modify-write: nobody else can reach the block.
        if (references == 1 || block->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            deallocate(block);
    }
    void replaceBlock(Block* block) {
        release(block_);
        block_ = block;
    }
    PEGASUS_HIDDEN void makeWritable(Uint32 capacity);
    PEGASUS_HIDDEN String& assignUtf8(const unsigned char* bytes, Uint32 n);

    [[noreturn]] static void throwIndexOutOfBounds();

    Block* block_;
    alignas(Block) unsigned char own_[blockHeader + (ownCapacity + 1) * sizeof(Uint16)];
};

PEGASUS_COMMON_LINKAGE String operator+(const String& a, const String& b);

/// Not UTF-8: units 1 to FF as one byte each, all others as \xHHHH. Width and fill apply to the
/// first unit alone. To print text, print getCString().
PEGASUS_COMMON_LINKAGE std::ostream& operator<<(std::ostream& out, const String& text);

} // namespace Pegasus

#endif
