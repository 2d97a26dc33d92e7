// The compiled form of the tables, and what runs it. A table becomes a small bytecode: constant
// text with places for values in between, so that decoding formats each value once, straight into
// the output.
#pragma once

#include "event/Draft.h"
#include "event/Record.h"
#include "event/Rows.h"

namespace Pegasus::mpu {

enum class Opcode : std::uint8_t {
    End,
    Unsigned,
    Signed, // of 4 bytes
    Upper,  // hexadecimal with at least `operand` digits
    Lower,
    Upper4x8, // 8 digits of 4 bytes: the most frequent one
    Pointer,
    Float,
    Name,   // operand: index of the name table
    Custom, // operand: index of the function
    Bit,    // operand as Name, `bit`
    Flag,   // likewise, any bit
    Text,
    Trimmed,
    EventName,
    SkipZero, // number is zero: resume `operand` instructions and `extra` characters later
    Literal,  // constant text alone
};

// One place for a value and the constant text before it.
struct Instruction {
    Opcode op;
    std::uint8_t operand;
    std::uint8_t bit : 6;
    Provenance provenance : 2; // of the row
    std::uint8_t size;         // bytes of a number
    std::uint16_t at;
    std::uint16_t literalLength; // characters of constant text before the value
    std::uint16_t extra;         // Text: most bytes; SkipZero: characters to skip
};

union Operand {
    const NameTable* names;
    char* (*put)(char* out, const std::uint8_t* at);
};

// A table of rows.
struct Layout {
    const Instruction* code;
    const char* text; // all constant texts in their order, kSlack more bytes readable
    const Operand* operands;
    const std::uint32_t* mask; // a bit for each byte that a number is read from; null: of all
    std::uint16_t extent;      // bytes of the structure that numbers are read from
    std::uint16_t room;        // longest output, texts from the record and event names not counted
    Provenance provenance;     // the weakest of the rows
};

// A short view is copied into a zeroed buffer of its layout's size.
inline constexpr std::size_t kMaxExtent = 640;

// Writes the elements of the structure at the start of `view`.
void write(TextWriter& out, const Layout& layout, const RecordView& view,
           std::string_view titleOf = {});

// Notes what the layout's numbers are read from.
void noteNumbers(const Layout& layout, const RecordView& view);

// The compiled form of a table of events: arrays of numbers, and one of pointers for each of name
// tables and functions.
class Events {
public:
    // A row. Entries are in the order of their codes, a catch-all first.
    struct Entry {
        std::uint16_t major;
        std::uint16_t first;
        std::uint16_t last;
        std::uint16_t name;    // of the titles, the first of them
        std::uint16_t piece;   // the summary; the pieces of the body follow it
        std::uint8_t pieces;   // their number, with the summary
        bool bySeverity;       // three titles: other, warning, error
        Provenance provenance; // of the meaning of the codes
    };
    struct Piece {
        std::uint8_t isCustom : 1;
        Provenance provenance : 2;
        std::uint8_t index; // of the layout or function
        std::uint16_t at;
        bool operator==(const Piece&) const = default;
    };
    struct Place { // of a layout
        std::uint16_t code;
        std::uint16_t text;
        std::uint16_t mask;
        std::uint16_t extent;
        std::uint16_t room;
        bool isDense; // has no mask
        Provenance provenance;
    };
    struct Name {
        std::uint16_t at;
        std::uint16_t length;
    };
    using Function = void (*)(Draft& draft, const Record& record, const RecordView& data);

    // Null when no row has the codes.
    const Entry* find(std::uint32_t major, std::uint32_t minor) const;
    const Entry* find(std::uint32_t id) const { return find(0, id); }

    std::string_view title(const Entry& entry, std::uint8_t severity) const {
        const Name& name = names[entry.name + (!entry.bySeverity ? 0
                                               : severity == 3   ? 2
                                               : severity == 2   ? 1
                                                                 : 0)];
        return {text + name.at, name.length};
    }
    // Writes title, summary and body of an event whose data begin at `data`.
    void write(Draft& draft, const Entry& entry, const Record& record,
               const RecordView& data) const;
    // Summary and body alone.
    void writeBody(Draft& draft, const Entry& entry, const Record& record,
                   const RecordView& data) const;
    // Some pieces of the entry's body, all of them rows: `n` from number `first` on, which has its
    // structure at `data`.
    void writeRows(TextWriter& body, const Entry& entry, unsigned first, unsigned n,
                   const RecordView& data) const;
    // What every event of the table has before and after the pieces of its row.
    void writeHead(Draft& draft, const Record& record, const RecordView& data) const {
        pieces(draft, head, {}, record, data);
    }
    void writeTail(Draft& draft, const Record& record, const RecordView& data) const {
        pieces(draft, tail, {}, record, data);
    }
    void writeTitle(Draft& draft, const Record& record) const {
        mpu::write(draft.title, layout(titleLayout), record.view());
    }

    struct Range {
        std::uint16_t first;
        std::uint8_t count;
    };
    const Entry* entries;
    std::size_t count;
    const Piece* pieceCodes;
    const Place* places;
    const Name* names;
    const Instruction* code;
    const char* text;
    const std::uint32_t* masks;
    const Operand* operands;
    const Function* functions;
    Range head;
    Range tail;
    std::uint8_t titleLayout;

private:
    Layout layout(std::size_t i) const {
        const Place& place = places[i];
        return {code + place.code, text + place.text,
                operands,          place.isDense ? nullptr : masks + place.mask,
                place.extent,      place.room,
                place.provenance};
    }
    void call(Draft& draft, const Piece& piece, const Record& record, const RecordView& view) const;
    void pieces(Draft& draft, Range range, std::string_view name, const Record& record,
                const RecordView& data) const;
};

// `text` without the blanks at both ends.
std::string_view trimBlanks(std::string_view text);

} // namespace Pegasus::mpu
