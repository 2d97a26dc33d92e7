// Structures and events are data: the words in which a decoder's tables are written.
//
// A structure of a record is a table of rows. A row is an element: its tag, the printf format of
// its value, and where in the structure the value is (offsets in bytes, all numbers big-endian):
//
//     inline constexpr Row kTimerRows[] = {
//         {"Thread_Index", "%d", u32(0)},
//         {"isRecurring", "%s", flag(u32(12), kTrueFalse)},
//     };
//
// What an event is, is a row too: the code that selects it, title, summary, and the pieces of its
// body in order:
//
//     inline constexpr EventRow kEvents[] = {
//         {1000, "Information", line("%s", text(0)), {kTextRows}},
//         {1040, "Link Status", line("Port %d is up", u32(0)), {kPortRows, rows(kTextRows, 16)}},
//     };
//
// The same tables serve the decoder, the record reference, the schema, the sample writer and the
// mutator of the fuzz targets. They are checked and compiled by TableCompiler.h.
#pragma once

#include "event/EventBasis.h"
#include "event/Names.h"

#include <array>
#include <span>

namespace Pegasus::mpu {

// A field that no format can show: `put` gets its bytes and writes at most `maxLength` characters,
// all of which makeSafeString keeps.
struct CustomField {
    char* (*put)(char* out, const std::uint8_t* at);
    std::uint16_t maxLength;
    std::string_view description;
};

struct Value {
    enum Kind : std::uint8_t { None, Number, Name, Bit, Text, Trimmed, Custom, Index, EventName };
    Kind kind = None;
    std::uint8_t bit = 0; // of Bit: which one, or kAnyBit
    std::uint16_t at = 0;
    std::uint16_t size = 0; // bytes; of Text: most it can have, 0 for "to the end of the view"
    const NameTable* names = nullptr;
    const CustomField* custom = nullptr;

    // Whether it is read from the record.
    constexpr bool isRead() const { return kind != None && kind != Index && kind != EventName; }
};
inline constexpr std::uint8_t kAnyBit = 0xFF;

constexpr Value number(unsigned at, unsigned size) {
    return {Value::Number, 0, static_cast<std::uint16_t>(at), static_cast<std::uint16_t>(size)};
}
constexpr Value u8(unsigned at) {
    return number(at, 1);
}
constexpr Value u16(unsigned at) {
    return number(at, 2);
}
constexpr Value u24(unsigned at) {
    return number(at, 3);
}
constexpr Value u32(unsigned at) {
    return number(at, 4);
}
constexpr Value u48(unsigned at) {
    return number(at, 6);
}
constexpr Value u64(unsigned at) {
    return number(at, 8);
}
// The name that `table` has for the number.
constexpr Value name(Value v, const NameTable& table) {
    return {Value::Name, 0, v.at, v.size, &table};
}
// The second text of `two` when bit `k` (1 << k) of the number is set, else the first.
constexpr Value bit(Value v, unsigned k, const NameTable& two) {
    return {Value::Bit, static_cast<std::uint8_t>(k), v.at, v.size, &two};
}
// The second text of `two` when the number is not zero, else the first.
constexpr Value flag(Value v, const NameTable& two) {
    return bit(v, kAnyBit, two);
}
// A text that ends at its NUL, after `size` bytes or with the view.
constexpr Value text(unsigned at, unsigned size = 0) {
    return {Value::Text, 0, static_cast<std::uint16_t>(at), static_cast<std::uint16_t>(size)};
}
// A text of fixed width that is padded with blanks, which are left off at both ends.
constexpr Value trimmed(unsigned at, unsigned size) {
    Value v = text(at, size);
    v.kind = Value::Trimmed;
    return v;
}
// What `how` makes of `size` bytes.
constexpr Value custom(unsigned at, unsigned size, const CustomField& how) {
    Value v = number(at, size);
    v.kind = Value::Custom;
    v.custom = &how;
    return v;
}
// The running number of a repeated row, from 0.
inline constexpr Value index{Value::Index};
// The title of the event's row.
inline constexpr Value eventName{Value::EventName};

// The closed set of formats: %d (a 32-bit number is signed, smaller ones are not), %u, %llu, %x and
// %X with or without a zero-padded width, %p (null is "(nil)"), %f (single precision), %s (texts,
// names, flags and custom fields). "l" is ignored: numbers are as wide as their field. A tag may
// hold formats of the index.
struct Row {
    enum Kind : std::uint8_t { Element, Open, Close, Line };

    std::string_view tag;
    std::string_view format;
    Value values[5];
    Kind kind = Element;
    Provenance provenance = Provenance::Documented;
    bool isOverlay = false;   // a second view of bytes that another row shows
    bool optional = false;    // left out when the (first) number is zero
    std::uint16_t count = 1;  // times the row is repeated ...
    std::uint16_t stride = 0; // ... with so many bytes between

    constexpr Row() = default;
    constexpr Row(std::string_view tag_, std::string_view format_, Value a = {}, Value b = {},
                  Value c = {}, Value d = {}, Value e = {})
        : tag(tag_), format(format_), values{a, b, c, d, e} {}

    // Variations of a row.
    constexpr Row inferred() const { return with(Provenance::Inferred); }
    constexpr Row assumed() const { return with(Provenance::Assumed); }
    constexpr Row with(Provenance p) const {
        Row row = *this;
        row.provenance = p;
        return row;
    }
    constexpr Row overlay() const {
        Row row = *this;
        row.isOverlay = true;
        return row;
    }
    constexpr Row unlessZero() const {
        Row row = *this;
        row.optional = true;
        return row;
    }
    constexpr Row repeat(std::uint16_t n, std::uint16_t bytes) const {
        Row row = *this;
        row.count = n;
        row.stride = bytes;
        return row;
    }
};

// The tags of a group around the rows between them.
constexpr Row open(std::string_view tag) {
    Row row(tag, "");
    row.kind = Row::Open;
    return row;
}
constexpr Row close(std::string_view tag) {
    Row row(tag, "");
    row.kind = Row::Close;
    return row;
}

// Text without tags: a title or summary, or a part of one.
constexpr Row line(std::string_view format, Value a = {}, Value b = {}, Value c = {}, Value d = {},
                   Value e = {}) {
    Row row("", format, a, b, c, d, e);
    row.kind = Row::Line;
    return row;
}

enum class Style : std::uint8_t {
    Spaced, // tags are repaired to valid names, one blank after each element
    Joined, // tags as they are, nothing between the elements
};

// ---- events ------------------------------------------------------------------------------------

class Record;
class RecordView;
struct Draft;

using namespace std::string_view_literals; // "with its NUL\0"sv

// What rows can't say, as a function. `data` begins where the piece does.
struct CustomPiece {
    void (*write)(Draft& draft, const Record& record, const RecordView& data);
    std::string_view description;   // one sentence for people, in Markdown
    std::span<const Row> rows = {}; // what it shows of the record, as far as rows can tell
    std::string_view sample = {};   // bytes that a sample record has there
    Provenance provenance = Provenance::Documented;
};

// A part of a body: rows of a structure, or a function. Offsets are from the start of the event's
// data.
struct Piece {
    enum Kind : std::uint8_t { None, Rows, Custom, Sample };
    Kind kind = None;
    std::uint16_t at = 0;
    std::span<const Row> rows{};
    const CustomPiece* custom = nullptr;
    std::string_view sample{}; // written over what the rows make of a sample record

    constexpr Piece() = default;
    constexpr Piece(std::span<const Row> table, unsigned offset = 0)
        : kind(Rows), at(static_cast<std::uint16_t>(offset)), rows(table) {}
    template <std::size_t Count>
    constexpr Piece(const Row (&table)[Count]) : Piece(std::span<const Row>(table)) {}
    template <std::size_t Count>
    constexpr Piece(const std::array<Row, Count>& table) : Piece(std::span<const Row>(table)) {}
    constexpr Piece(const CustomPiece& function, unsigned offset = 0)
        : kind(Custom), at(static_cast<std::uint16_t>(offset)), custom(&function) {}
};

// Rows whose structure begins at `at`.
constexpr Piece rows(std::span<const Row> table, unsigned at) {
    return {table, at};
}
constexpr Piece custom(const CustomPiece& function, unsigned at) {
    return {function, at};
}
// Shows nothing: bytes of the sample record that it should rather have than made-up ones.
constexpr Piece sample(unsigned at, std::string_view bytes) {
    Piece piece;
    piece.kind = Piece::Sample;
    piece.at = static_cast<std::uint16_t>(at);
    piece.sample = bytes;
    return piece;
}

inline constexpr std::size_t kMaxPieces = 10;
using Pieces = std::array<Piece, kMaxPieces>;

// The codes for which a row is: one, a range, or all that no other row has.
struct Codes {
    std::uint16_t major = 0;
    std::uint16_t first = 0;
    std::uint16_t last = 0;

    constexpr Codes(unsigned code) : Codes(0, code, code) {}
    constexpr Codes(unsigned major_, unsigned code) : Codes(major_, code, code) {}
    constexpr Codes(unsigned major_, unsigned first_, unsigned last_)
        : major(static_cast<std::uint16_t>(major_)), first(static_cast<std::uint16_t>(first_)),
          last(static_cast<std::uint16_t>(last_)) {}
    constexpr bool isAny() const { return last == kAnyCode; }

    static constexpr std::uint16_t kAnyCode = 0xFFFF;
};
constexpr Codes anyOf(unsigned major) {
    return {major, 0, Codes::kAnyCode};
}
// For all codes of a table with one number.
inline constexpr Codes kAny = anyOf(0);

// One title, or three that go by the event's severity.
struct Title {
    std::string_view other; // informational, and what is none of the three
    std::string_view warning;
    std::string_view error;

    template <std::size_t Size>
    constexpr Title(const char (&text)[Size]) : Title(std::string_view(text, Size - 1)) {}
    constexpr Title(std::string_view text) : other(text), warning(text), error(text) {}
    constexpr Title(std::string_view error_, std::string_view warning_, std::string_view other_)
        : other(other_), warning(warning_), error(error_) {}
    constexpr bool isOne() const { return other == warning && other == error; }
};

// A line, or a function that writes one.
struct Summary {
    Row row = line("");
    const CustomPiece* custom = nullptr;
    std::uint16_t at = 0; // of the function's data

    constexpr Summary() = default;
    constexpr Summary(const Row& text) : row(text) {}
    constexpr Summary(const CustomPiece& function, unsigned offset = 0)
        : custom(&function), at(static_cast<std::uint16_t>(offset)) {}
};
constexpr Summary summary(const CustomPiece& function, unsigned at) {
    return {function, at};
}

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order in which a row is read
struct EventRow {
    Codes codes;
    Title title;
    Summary summary{};
    Pieces pieces{};
    Provenance provenance = Provenance::Documented; // of the meaning of the codes

    constexpr EventRow assumed() const {
        EventRow row = *this;
        row.provenance = Provenance::Assumed;
        return row;
    }
};

// A number that a record has where a table is for it.
struct Key {
    std::uint16_t at; // from the start of the record
    std::uint8_t size;
    std::uint32_t value;
};

struct EventTable {
    std::string_view heading{}; // where a module has several tables
    std::span<const EventRow> rows;
    Value major{}; // the numbers that select a row, from the start of the record;
    Value minor{}; // with one of them, that is the minor one
    Style style = Style::Spaced;
    std::span<const Key> keys{}; // what else selects the table
    Row title = line("");        // unless empty, the title of all events, from the record's start
    std::uint16_t dataAt = 152;  // where the data begin in sample records
    std::span<const Piece>
        frame{};             // what the decoder reads before the data, from the record's start
    Pieces head{};           // what comes before the pieces of every row, unlisted codes too
    Pieces tail{};           // what comes after them
    std::string_view note{}; // Markdown: what the flow of the decoder adds
};

} // namespace Pegasus::mpu
