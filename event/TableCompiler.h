// Checks the tables of Rows.h and compiles them into what Layout.h runs. All of it happens when the
// program is compiled:
//
//     static_assert(accepted<kTimerRows>);              // where the table is
//     write(out, kLayout<kTimerRows>, view);            // one table of rows
//     kCompiled<kTable>.find(code);                     // a table of events
//
// A table that is refused shows up in the compiler's message as the type Refused, with the reason,
// the row's number, its tag or code, and the other row where there are two.
#pragma once

#include "event/Ascii.h"
#include "event/Layout.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <vector>

namespace Pegasus::mpu {

enum class Reason : std::uint8_t {
    None,
    NotATag,
    TagBeginsWithItsGroups, // the closing tag would pass for the group's when a body is made safe
    NotAFormat,
    NoSuchFormat,
    WidthWithoutZero,    // a width is zero-padded here
    WidthNotOfHex,       // only hexadecimal numbers have a width
    FormatOf32Bits,      // %f and %p
    FormatOfAnotherKind, // %s is for texts and names, the other formats are for numbers
    MissingValue,        // more formats than values
    ExtraValue,
    NotABit,
    UnsafeText, // the text would not pass makeSafeString as it is
    OffsetTooLarge,
    LayoutTooLarge,
    OptionalTooLong,
    TooManyOperands,
    TooManyRepetitions, // the copies overlap
    Overlap,            // two rows read the same bytes; mark one as an overlay
    CodeTwice,
    CatchAllTwice,
    EmptyTitle,
    TableTooLarge,
};

// Enough of a tag to find the row by.
struct TagText {
    char text[24] = {};
    constexpr TagText() = default;
    constexpr explicit TagText(std::string_view tag) {
        for (std::size_t i = 0; i + 1 < sizeof text && i < tag.size(); ++i)
            text[i] = tag[i];
    }
};

// The first thing that is wrong with a table.
struct Refusal {
    Reason reason = Reason::None;
    int row = 0; // from 0, in the table of rows; in a table of events the piece's
    TagText tag{};
    int otherRow = 0;
    TagText otherTag{};
    unsigned major = 0; // of the event, where there is one
    unsigned code = 0;
};

namespace table_compiler {

struct LayoutKey {
    const Row* rows;
    std::size_t count;
};

// Appends what it compiles; each method returns the index of what it added, or of its equal.
class Compiler {
public:
    constexpr explicit Compiler(Style style) : style_(style) {}

    constexpr std::uint8_t layout(std::span<const Row> rows) {
        for (std::size_t i = 0; i < places.size(); ++i)
            if (keys_[i].count == rows.size() && isSame(keys_[i].rows, rows.data(), rows.size()))
                return static_cast<std::uint8_t>(i);
        keys_.push_back({rows.data(), rows.size()});
        places.push_back({size16(code.size()), size16(text.size()), size16(masks.size()), 0, 0,
                          true, Provenance::Documented});
        extent_ = room_ = pending_ = 0;
        const std::size_t start = text.size();
        group_ = {};
        checkOverlaps(rows);
        for (row_ = 0; row_ < static_cast<int>(rows.size()); ++row_)
            for (std::size_t i = 0; i < rows[static_cast<std::size_t>(row_)].count; ++i)
                row(rows[static_cast<std::size_t>(row_)], i);
        instruction({Opcode::End, 0, 0, {}, 0, 0, 0, 0});
        room_ += text.size() - start;
        if (room_ > 0xFFFF || extent_ > kMaxExtent)
            refuse(Reason::LayoutTooLarge, rows.empty() ? std::string_view() : rows[0].tag);
        places.back().extent = size16(extent_);
        places.back().room = size16(room_);
        addMask();
        return static_cast<std::uint8_t>(places.size() - 1);
    }

    constexpr void events(const EventTable& table) {
        title = layout({&table.title, 1});
        head = range(table.head);
        tail = range(table.tail);
        std::vector<std::size_t> order;
        for (std::size_t i = 0; i < table.rows.size(); ++i)
            order.push_back(i);
        const auto key = [&](std::size_t i) {
            const Codes& codes = table.rows[i].codes;
            return (std::uint64_t{codes.major} << 32) + (std::uint64_t{codes.first} << 16) +
                   (0xFFFFu - codes.last);
        };
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
        for (std::size_t i = 0; i < order.size(); ++i) {
            event(table.rows[order[i]]);
            if (i > 0)
                checkCodes(table.rows[order[i - 1]].codes, table.rows[order[i]].codes);
        }
        if (code.size() > 0xFFFF || text.size() > 0xFFFF || names.size() > 0xFFFF ||
            places.size() > 0xFF || functions.size() > 0xFF)
            refuse(Reason::TableTooLarge, {});
    }

    std::vector<Instruction> code;
    std::vector<char> text;
    std::vector<Operand> operands;
    std::vector<Events::Place> places;
    std::vector<std::uint32_t> masks;
    std::vector<Events::Entry> entries;
    std::vector<Events::Piece> pieces;
    std::vector<Events::Name> names;
    std::vector<Events::Function> functions;
    Events::Range head{};
    Events::Range tail{};
    std::uint8_t title = 0;
    Refusal refusal{};

private:
    // ---- events ----

    constexpr void event(const EventRow& row) {
        major_ = row.codes.major;
        code_ = row.codes.first;
        if (row.title.other.empty())
            refuse(Reason::EmptyTitle, {});
        Events::Entry entry{};
        entry.major = row.codes.major;
        entry.first = row.codes.first;
        entry.last = row.codes.last;
        entry.bySeverity = !row.title.isOne();
        entry.name = name(row.title.other);
        if (entry.bySeverity) {
            name(row.title.warning);
            name(row.title.error);
        }
        entry.provenance = row.provenance;
        entry.piece = size16(pieces.size());
        if (row.summary.custom)
            addCustom(*row.summary.custom, row.summary.at);
        else
            addLayout({&row.summary.row, 1}, 0);
        add(row.pieces);
        entry.pieces = static_cast<std::uint8_t>(pieces.size() - entry.piece);
        // Rows with the same structures share their pieces.
        const auto run = pieces.begin() + entry.piece;
        const auto known = std::search(pieces.begin(), run, run, pieces.end());
        if (known != run) {
            entry.piece = static_cast<std::uint16_t>(known - pieces.begin());
            pieces.erase(run, pieces.end());
        }
        entries.push_back(entry);
    }

    constexpr void checkCodes(const Codes& a, const Codes& b) {
        if (a.major != b.major)
            return;
        if (a.isAny() && b.isAny())
            refuse(Reason::CatchAllTwice, {});
        else if (!a.isAny() && b.first <= a.last)
            refuse(Reason::CodeTwice, {});
    }

    constexpr Events::Range range(const Pieces& from) {
        const std::size_t first = pieces.size();
        add(from);
        return {size16(first), static_cast<std::uint8_t>(pieces.size() - first)};
    }

    constexpr void add(const Pieces& from) {
        for (const Piece& piece : from) {
            if (piece.kind == Piece::Rows)
                addLayout(piece.rows, piece.at);
            else if (piece.kind == Piece::Custom)
                addCustom(*piece.custom, piece.at);
        }
    }
    constexpr void addLayout(std::span<const Row> rows, std::uint16_t at) {
        const std::uint8_t i = layout(rows);
        pieces.push_back(Events::Piece{0, places[i].provenance, i, at});
    }
    constexpr void addCustom(const CustomPiece& custom, std::uint16_t at) {
        pieces.push_back(Events::Piece{1, custom.provenance, function(custom), at});
    }

    constexpr std::uint8_t function(const CustomPiece& custom) {
        if (std::find(customs_.begin(), customs_.end(), &custom) == customs_.end()) {
            customs_.push_back(&custom);
            checkOnly(custom.rows); // for people only, and checked like the others
        }
        for (std::size_t i = 0; i < functions.size(); ++i)
            if (functions[i] == custom.write)
                return static_cast<std::uint8_t>(i);
        functions.push_back(custom.write);
        return static_cast<std::uint8_t>(functions.size() - 1);
    }

    constexpr void checkOnly(std::span<const Row> rows) {
        Compiler alone(style_);
        alone.layout(rows);
        if (refusal.reason == Reason::None) {
            refusal = alone.refusal;
            refusal.major = major_;
            refusal.code = code_;
        }
    }

    constexpr std::uint16_t name(std::string_view text_) {
        // Neighbours often share a title.
        if (!names.empty() && names.back().length == text_.size() &&
            std::equal(text_.begin(), text_.end(), text.begin() + names.back().at)) {
            names.push_back(names.back());
            return size16(names.size() - 1);
        }
        names.push_back({size16(text.size()), size16(text_.size())});
        requireSafe(text_, text_);
        for (char c : text_)
            text.push_back(c);
        return size16(names.size() - 1);
    }

    static constexpr bool isSame(const Row* a, const Row* b, std::size_t count) {
        if (a == b)
            return true;
        const auto same = [](const Row& x, const Row& y) {
            if (x.kind != y.kind || x.tag != y.tag || x.format != y.format || x.count != y.count ||
                x.stride != y.stride || x.optional != y.optional || x.provenance != y.provenance)
                return false;
            for (std::size_t i = 0; i < std::size(x.values); ++i) {
                const Value& v = x.values[i];
                const Value& w = y.values[i];
                if (v.kind != w.kind || v.at != w.at || v.size != w.size || v.bit != w.bit ||
                    v.names != w.names || v.custom != w.custom)
                    return false;
            }
            return true;
        };
        return std::equal(a, a + count, b, same);
    }

    // ---- rows ----

    constexpr void row(const Row& row, std::size_t i) {
        places.back().provenance = std::max(places.back().provenance, row.provenance);
        if (row.kind == Row::Line) {
            value(row, i);
            return;
        }
        const std::size_t skip = code.size();
        std::size_t skipped = 0;
        if (row.optional) {
            instruction({Opcode::SkipZero,
                         0,
                         0,
                         {},
                         size8(row.values[0].size),
                         place(row.values[0], row, i),
                         0,
                         0});
            skipped = text.size();
        }
        if (row.kind == Row::Element && !group_.empty() && row.tag.starts_with(group_))
            refuse(Reason::TagBeginsWithItsGroups, row.tag);
        if (row.kind != Row::Element)
            group_ = row.kind == Row::Open ? row.tag : std::string_view();
        literal(row.kind == Row::Close ? "</" : "<");
        tag(row, i);
        literal(">");
        if (row.kind == Row::Element) {
            value(row, i);
            literal("</");
            tag(row, i);
            literal(">");
            literal(style_ == Style::Spaced ? " " : "");
        }
        if (row.optional) {
            // The text after the last value is part of what is skipped.
            instruction({Opcode::Literal, 0, 0, {}, 0, 0, 0, 0});
            if (code.size() - skip > 0x100)
                refuse(Reason::OptionalTooLong, row.tag);
            code[skip].operand = static_cast<std::uint8_t>(code.size() - skip - 1);
            code[skip].extra = size16(text.size() - skipped);
        }
    }

    constexpr void tag(const Row& row, std::size_t i) {
        bool first = true;
        for (std::size_t at = 0; at < row.tag.size(); ++at) {
            if (row.tag[at] != '%') {
                character(style_ == Style::Spaced ? tagCharacter(row.tag[at], first) : row.tag[at]);
            } else {
                const Format f = parse(row.tag, at, row);
                numeral(i, f.digits, f.letter == 'x' ? 16 : 10);
            }
            first = false;
        }
        if (row.tag.empty() || row.tag.find_first_of("<>&") != std::string_view::npos)
            refuse(Reason::NotATag, row.tag);
    }

    constexpr void value(const Row& row, std::size_t i) {
        std::size_t next = 0;
        for (std::size_t at = 0; at < row.format.size(); ++at) {
            if (row.format[at] != '%') {
                requireSafe(row.format.substr(at, 1), row.tag);
                character(row.format[at]);
                continue;
            }
            if (next == std::size(row.values) || row.values[next].kind == Value::None)
                return refuse(Reason::MissingValue, row.tag);
            put(parse(row.format, at, row), row.values[next++], row, i);
        }
        if (next < std::size(row.values) && row.values[next].kind != Value::None)
            refuse(Reason::ExtraValue, row.tag);
    }

    struct Format {
        unsigned digits;
        char letter;
    };
    // Reads the format at the "%" at `at` and leaves `at` on its last character.
    constexpr Format parse(std::string_view format, std::size_t& at, const Row& row) {
        Format f{0, 0};
        if (++at < format.size() && format[at] == '0')
            ++at;
        else if (at < format.size() && isDigit(format[at]))
            refuse(Reason::WidthWithoutZero, row.tag);
        for (; at < format.size() && isDigit(format[at]) && f.digits <= 16; ++at)
            f.digits = f.digits * 10 + static_cast<unsigned>(format[at] - '0');
        while (at < format.size() && format[at] == 'l')
            ++at;
        if (at >= format.size() || f.digits > 16)
            refuse(Reason::NotAFormat, row.tag);
        else
            f.letter = format[at];
        return f;
    }

    constexpr void put(const Format& f, const Value& v, const Row& row, std::size_t i) {
        if (v.kind == Value::Index)
            return numeral(i, f.digits, f.letter == 'x' ? 16 : 10);
        const bool words = v.kind != Value::Number;
        if (words != (f.letter == 's'))
            return refuse(Reason::FormatOfAnotherKind, row.tag);
        Instruction made{Opcode::Unsigned, 0, 0, {}, size8(v.size), place(v, row, i), 0, 0};
        made.provenance = row.provenance;
        switch (v.kind) {
        case Value::Name:
            made.op = Opcode::Name;
            made.operand = operand(v, row);
            room_ += v.names->room;
            break;
        case Value::Bit:
            if (v.names->count != 2 || (v.bit != kAnyBit && v.bit >= v.size * 8))
                return refuse(Reason::NotABit, row.tag);
            made.op = v.bit == kAnyBit ? Opcode::Flag : Opcode::Bit;
            made.bit = v.bit & 63;
            made.operand = operand(v, row);
            room_ += v.names->room;
            break;
        case Value::Custom:
            made.op = Opcode::Custom;
            made.operand = operand(v, row);
            room_ += v.custom->maxLength;
            break;
        case Value::Text:
        case Value::Trimmed:
            made.op = v.kind == Value::Text ? Opcode::Text : Opcode::Trimmed;
            made.extra = v.size;
            break;
        case Value::EventName:
            made.op = Opcode::EventName;
            break;
        default:
            number(f, v, row, made);
        }
        instruction(made);
    }

    constexpr void number(const Format& f, const Value& v, const Row& row, Instruction& made) {
        switch (f.letter) {
        case 'd':
            made.op = v.size == 4 ? Opcode::Signed : Opcode::Unsigned;
            break;
        case 'u':
            break;
        case 'x':
        case 'X':
            made.op = f.letter == 'x' ? Opcode::Lower : Opcode::Upper;
            made.operand = static_cast<std::uint8_t>(f.digits ? f.digits : 1);
            if (made.op == Opcode::Upper && made.operand == 8 && v.size == 4)
                made.op = Opcode::Upper4x8;
            break;
        case 'p':
            made.op = Opcode::Pointer;
            break;
        case 'f':
            made.op = Opcode::Float;
            room_ += kFloatRoom;
            break;
        default:
            return refuse(Reason::NoSuchFormat, row.tag);
        }
        // What a number can fill; what is written in blocks beyond that falls into the slack.
        const unsigned digits[] = {0, 3, 5, 8, 11, 13, 15, 17, 20};
        room_ += std::max<std::size_t>({digits[v.size], 2u * v.size + 2, f.digits});
        if (f.digits && f.letter != 'x' && f.letter != 'X')
            refuse(Reason::WidthNotOfHex, row.tag);
        if ((f.letter == 'f' || f.letter == 'p') && v.size != 4)
            refuse(Reason::FormatOf32Bits, row.tag);
    }

    constexpr std::uint16_t place(const Value& v, const Row& row, std::size_t i) {
        const std::size_t at = v.at + i * row.stride;
        if (v.kind != Value::Text && v.kind != Value::Trimmed && v.isRead()) {
            extent_ = std::max(extent_, at + v.size);
            read_.push_back({at, v.size});
        }
        if (at > 0xFFFF)
            refuse(Reason::OffsetTooLarge, row.tag);
        return size16(at);
    }

    // A bit for each byte that the layout's numbers are read from.
    constexpr void addMask() {
        std::vector<std::uint32_t> mask;
        while (32 * mask.size() < extent_)
            mask.push_back(0);
        for (const auto& [at, size] : read_)
            for (std::size_t byte = at; byte < at + size; ++byte)
                mask[byte / 32] |= std::uint32_t{1} << byte % 32;
        read_.clear();
        std::size_t read = 0;
        for (const std::uint32_t word : mask)
            read += static_cast<std::size_t>(std::popcount(word));
        if (read == extent_) // without a gap
            mask.clear();
        places.back().isDense = mask.empty();
        const auto known = std::search(masks.begin(), masks.end(), mask.begin(), mask.end());
        places.back().mask = size16(static_cast<std::size_t>(known - masks.begin()));
        if (known == masks.end())
            masks.insert(masks.end(), mask.begin(), mask.end());
    }

    constexpr std::uint8_t operand(const Value& wanted, const Row& row) {
        for (std::size_t i = 0; i < operands.size(); ++i)
            if (operandKeys_[i].names == wanted.names && operandKeys_[i].custom == wanted.custom)
                return static_cast<std::uint8_t>(i);
        if (operands.size() == 0xFF)
            refuse(Reason::TooManyOperands, row.tag);
        for (std::size_t i = 0; wanted.names && i < wanted.names->count; ++i)
            requireSafe(wanted.names->at(i), row.tag);
        operandKeys_.push_back(wanted);
        operands.push_back(wanted.custom ? Operand{.put = wanted.custom->put}
                                         : Operand{.names = wanted.names});
        return static_cast<std::uint8_t>(operands.size() - 1);
    }

    // No two values on the same bytes, but for different bits of one word and overlays.
    constexpr void checkOverlaps(std::span<const Row> rows) {
        for (std::size_t a = 0; a < rows.size(); ++a)
            for (std::size_t b = a + 1; b < rows.size(); ++b)
                if (!rows[a].isOverlay && !rows[b].isOverlay && overlap(rows[a], rows[b])) {
                    row_ = static_cast<int>(a);
                    refuse(Reason::Overlap, rows[a].tag, static_cast<int>(b), rows[b].tag);
                }
    }
    static constexpr bool overlap(const Row& a, const Row& b) {
        for (const Value& v : a.values)
            for (const Value& w : b.values) {
                if (!v.isRead() || !w.isRead() || v.size == 0 || w.size == 0)
                    continue;
                if (v.kind == Value::Bit && w.kind == Value::Bit && v.at == w.at && v.bit != w.bit)
                    continue;
                for (std::size_t i = 0; i < a.count; ++i)
                    for (std::size_t j = 0; j < b.count; ++j) {
                        const std::size_t p = v.at + i * a.stride;
                        const std::size_t q = w.at + j * b.stride;
                        if (p < q + w.size && q < p + v.size)
                            return true;
                    }
            }
        return false;
    }

    // Our own texts are not made safe again when a body is.
    constexpr void requireSafe(std::string_view text_, std::string_view tag) {
        for (char c : text_)
            if (c == '=' || kSafeCharacters[static_cast<unsigned char>(c)] != c)
                return refuse(Reason::UnsafeText, tag);
    }

    constexpr void numeral(std::size_t value, unsigned digits, unsigned base) {
        char figures[20] = {};
        std::size_t n = 0;
        for (; value != 0 || n < (digits ? digits : 1); value /= base)
            figures[n++] = "0123456789abcdef"[value % base];
        while (n > 0)
            character(figures[--n]);
    }
    constexpr void literal(std::string_view constant) {
        for (char c : constant)
            character(c);
    }
    constexpr void character(char c) {
        text.push_back(c);
        ++pending_;
    }
    constexpr void instruction(Instruction made) {
        made.literalLength = size16(pending_);
        pending_ = 0;
        code.push_back(made);
    }

    constexpr void refuse(Reason reason, std::string_view tag, int otherRow = 0,
                          std::string_view otherTag = {}) {
        if (refusal.reason == Reason::None)
            refusal = {reason, row_, TagText(tag), otherRow, TagText(otherTag), major_, code_};
    }

    static constexpr std::uint8_t size8(std::size_t n) { return static_cast<std::uint8_t>(n); }
    static constexpr std::uint16_t size16(std::size_t n) { return static_cast<std::uint16_t>(n); }

    Style style_;
    std::vector<LayoutKey> keys_;                           // of the layouts
    std::vector<std::pair<std::size_t, std::size_t>> read_; // by the layout's numbers: place, size
    std::vector<Value> operandKeys_;
    std::vector<const CustomPiece*> customs_;
    std::string_view group_;  // tag of the open one; groups don't nest
    std::size_t pending_ = 0; // literal characters since the last instruction
    std::size_t extent_ = 0;
    std::size_t room_ = 0;
    int row_ = 0; // where we are, for refusals
    unsigned major_ = 0;
    unsigned code_ = 0;
};

// Compiles a table of rows or of events.
template <const auto& Table, Style S>
constexpr Compiler compile() {
    if constexpr (requires { Table.rows; }) {
        Compiler compiler(Table.style);
        compiler.events(Table);
        return compiler;
    } else {
        Compiler compiler(S);
        compiler.layout(Table);
        return compiler;
    }
}

struct Sizes {
    std::size_t code, text, operands, masks, places, entries, pieces, names, functions;
    Refusal refusal;
};

template <const auto& Table, Style S>
inline constexpr Sizes kSizes = [] {
    const Compiler c = compile<Table, S>();
    return Sizes{c.code.size(),      c.text.size(),    c.operands.size(), c.masks.size(),
                 c.places.size(),    c.entries.size(), c.pieces.size(),   c.names.size(),
                 c.functions.size(), c.refusal};
}();

// Numbers alone, which need no relocation.
template <const auto& Table, Style S>
struct Packed {
    static constexpr Sizes sizes = kSizes<Table, S>;
    std::array<Events::Entry, sizes.entries> entries{};
    std::array<Events::Piece, sizes.pieces> pieces{};
    std::array<Events::Place, sizes.places> places{};
    std::array<Events::Name, sizes.names> names{};
    std::array<std::uint32_t, sizes.masks> masks{};
    std::array<Instruction, sizes.code> code{};
    std::array<char, sizes.text + TextWriter::kSlack> text{};
    Events::Range head{};
    Events::Range tail{};
    std::uint8_t title = 0;
};
template <const auto& Table, Style S>
struct Pointers {
    std::array<Operand, Packed<Table, S>::sizes.operands> operands{};
    std::array<Events::Function, Packed<Table, S>::sizes.functions> functions{};
};
template <const auto& Table, Style S>
struct Compiled {
    Packed<Table, S> packed;
    Pointers<Table, S> pointers;
};

template <const auto& Table, Style S>
inline constexpr Compiled<Table, S> kBoth = [] {
    Compiled<Table, S> out;
    const Compiler c = compile<Table, S>();
    std::copy(c.entries.begin(), c.entries.end(), out.packed.entries.begin());
    std::copy(c.pieces.begin(), c.pieces.end(), out.packed.pieces.begin());
    std::copy(c.places.begin(), c.places.end(), out.packed.places.begin());
    std::copy(c.names.begin(), c.names.end(), out.packed.names.begin());
    std::copy(c.masks.begin(), c.masks.end(), out.packed.masks.begin());
    std::copy(c.code.begin(), c.code.end(), out.packed.code.begin());
    std::copy(c.text.begin(), c.text.end(), out.packed.text.begin());
    std::copy(c.operands.begin(), c.operands.end(), out.pointers.operands.begin());
    std::copy(c.functions.begin(), c.functions.end(), out.pointers.functions.begin());
    out.packed.head = c.head;
    out.packed.tail = c.tail;
    out.packed.title = c.title;
    return out;
}();
template <const auto& Table, Style S>
inline constexpr Packed<Table, S> kPacked = kBoth<Table, S>.packed;
template <const auto& Table, Style S>
inline constexpr Pointers<Table, S> kPointers = kBoth<Table, S>.pointers;

// Its template arguments tell which table is refused, and why.
template <const auto& Table, Refusal Why>
struct Refused {
    static_assert(Why.reason == Reason::None, "this table is refused: see Why");
    static constexpr bool value = true;
};

} // namespace table_compiler

// Whether a table of rows or of events stands all checks; a refused one doesn't compile.
template <const auto& Table>
inline constexpr bool accepted =
    table_compiler::Refused<Table, table_compiler::kSizes<Table, Style::Spaced>.refusal>::value;

// The compiled form of a table of rows.
template <const auto& Rows, Style S = Style::Spaced>
inline constexpr Layout kLayout = [] {
    static_assert(table_compiler::Refused<Rows, table_compiler::kSizes<Rows, S>.refusal>::value);
    constexpr auto& packed = table_compiler::kPacked<Rows, S>;
    return Layout{packed.code.data(),
                  packed.text.data(),
                  table_compiler::kPointers<Rows, S>.operands.data(),
                  packed.places[0].isDense ? nullptr : packed.masks.data(),
                  packed.places[0].extent,
                  packed.places[0].room,
                  packed.places[0].provenance};
}();

// The compiled form of a table of events.
template <const auto& Table>
inline constexpr Events kEventsOf = [] {
    static_assert(accepted<Table>);
    constexpr auto& packed = table_compiler::kPacked<Table, Style::Spaced>;
    constexpr auto& pointers = table_compiler::kPointers<Table, Style::Spaced>;
    return Events{packed.entries.data(),
                  packed.entries.size(),
                  packed.pieces.data(),
                  packed.places.data(),
                  packed.names.data(),
                  packed.code.data(),
                  packed.text.data(),
                  packed.masks.data(),
                  pointers.operands.data(),
                  pointers.functions.data(),
                  packed.head,
                  packed.tail,
                  packed.title};
}();

} // namespace Pegasus::mpu
