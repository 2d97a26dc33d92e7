// Layouts are data. A structure of a record is one constexpr table of rows:
//
//     inline constexpr Row kTimerRows[] = {
//         {"Thread_Index", "%d", u32(0)},
//         {"isRecurring", "%s", flag(u32(12), kTrueFalse)},
//     };
//
// A row is an element: its tag, the printf format of its value, and where in the structure the
// values lie (offsets in bytes, all numbers big-endian). The same rows serve the decoder, which
// writes them with `write(out, kLayout<kTimerRows>, view)`, the record reference and the sample
// writer. When compiled, a table is checked and turned into ready-made constant text with places
// for the values, so that decoding formats each value once, straight into the output.
#pragma once

#include "event/Ascii.h"
#include "event/Names.h"
#include "event/RecordView.h"

#include <iterator>
#include <span>
#include <stdexcept>

namespace Pegasus::mpu {

// How we know where a field lies.
enum class Mark : std::uint8_t {
    Known,
    Fits,   // just this room is left between known fields, or a sister structure has it there
    Chosen, // settled by us
};

// A field that no format can show: `put` gets its bytes and writes at most `room` characters, all
// of which makeSafeString keeps.
using Formatter = char* (*)(char* out, const std::uint8_t* at);
struct Made {
    Formatter put;
    std::uint16_t room;
    std::string_view shows; // for the record reference
};

struct Value {
    enum Kind : std::uint8_t { None, Number, Name, Bit, Text, Trimmed, Index, Function };
    Kind kind = None;
    std::uint8_t bit = 0; // of Bit: which one, or kAnyBit
    std::uint16_t at = 0;
    std::uint16_t size = 0; // bytes; of Text: most it can have, 0 for "to the end of the view"
    const NameTable* names = nullptr;
    const Made* made = nullptr;
};
inline constexpr std::uint8_t kAnyBit = 0xFF;

constexpr Value number(unsigned at, unsigned size) {
    return {Value::Number, 0, static_cast<std::uint16_t>(at), static_cast<std::uint16_t>(size),
            nullptr};
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
    return {Value::Text, 0, static_cast<std::uint16_t>(at), static_cast<std::uint16_t>(size),
            nullptr};
}
// A text of fixed width that is filled up with blanks, which are left off at both ends.
constexpr Value trimmed(unsigned at, unsigned size) {
    Value v = text(at, size);
    v.kind = Value::Trimmed;
    return v;
}
// What `how` makes of `size` bytes.
constexpr Value made(unsigned at, unsigned size, const Made& how) {
    return {Value::Function, 0,   static_cast<std::uint16_t>(at), static_cast<std::uint16_t>(size),
            nullptr,         &how};
}
// The running number of a repeated row, from 0.
inline constexpr Value index{Value::Index, 0, 0, 0, nullptr};

// The closed set of formats: %d (a 32-bit number is signed, smaller ones are not), %u, %llu, %x and
// %X with or without a width filled up with zeros, %p (null is "(nil)"), %f (single precision), %s
// (texts, names, flags and what functions make). "l" is ignored: numbers are as wide as their
// field. A tag may hold formats of the index.
struct Row {
    enum Kind : std::uint8_t { Element, Open, Close, Line };

    std::string_view tag;
    std::string_view format;
    Value values[5];
    Kind kind = Element;
    Mark mark = Mark::Known;
    bool second = false;     // a second view of bytes that another row shows
    bool optional = false;   // left out when the (first) number is zero
    std::uint16_t count = 1; // times the row is repeated ...
    std::uint16_t step = 0;  // ... with so many bytes between

    constexpr Row(std::string_view tag_, std::string_view format_, Value a = {}, Value b = {},
                  Value c = {}, Value d = {}, Value e = {})
        : tag(tag_), format(format_), values{a, b, c, d, e} {}

    // Variations of a row.
    constexpr Row fits() const {
        Row row = *this;
        row.mark = Mark::Fits;
        return row;
    }
    constexpr Row chosen() const {
        Row row = *this;
        row.mark = Mark::Chosen;
        return row;
    }
    constexpr Row again() const {
        Row row = *this;
        row.second = true;
        return row;
    }
    constexpr Row unlessZero() const {
        Row row = *this;
        row.optional = true;
        return row;
    }
    constexpr Row times(std::uint16_t n, std::uint16_t bytes) const {
        Row row = *this;
        row.count = n;
        row.step = bytes;
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

// Text without tags: a summary or a part of one.
constexpr Row line(std::string_view format, Value a = {}, Value b = {}, Value c = {},
                   Value d = {}) {
    Row row("", format, a, b, c, d);
    row.kind = Row::Line;
    return row;
}

enum class Style : std::uint8_t {
    Spaced, // tags are repaired to valid names, one blank behind each element
    Joined, // tags as they stand, nothing between the elements
};

// One place for a value and the constant text in front of it.
struct Step {
    enum Op : std::uint8_t {
        End,
        Unsigned,
        Signed, // of 4 bytes
        Upper,  // hexadecimal with at least `aux` digits
        Lower,
        Upper4x8, // 8 digits of 4 bytes: the most frequent one
        Pointer,
        Float,
        Name,     // aux: index of the name table
        Function, // aux: index of the function
        Bit,      // aux as Name, `bit`
        Text,
        Trimmed,
        SkipZero, // number is zero: go on `aux` steps and `extra` characters later
        Literal,  // constant text alone
    };
    Op op;
    std::uint8_t aux;
    std::uint8_t bit;
    std::uint8_t size; // bytes of a number
    std::uint16_t at;
    std::uint16_t lead;  // characters of constant text before the value
    std::uint16_t extra; // Text: most bytes; SkipZero: characters to skip
};

union Helper {
    const NameTable* names;
    Formatter put;
};

struct Layout {
    const Step* steps;
    const char* text; // all constant texts in their order, kSlack more bytes readable
    const Helper* helpers;
    std::uint16_t extent; // bytes of the structure that numbers are read from
    std::uint16_t room;   // longest output, texts from the record not counted
};

// A short view is copied into a zeroed buffer of its layout's size.
inline constexpr std::size_t kMaxExtent = 640;

namespace layout_compiler {

// Reached only at compile time, where it stops the compilation.
[[noreturn]] inline void fail(const char* why) {
    throw std::logic_error(why);
}

struct Measure {
    std::size_t steps = 0;
    std::size_t characters = 0;
    std::size_t helpers = 0;
};

template <std::size_t Steps, std::size_t Characters>
struct Compiled {
    std::array<Step, Steps> steps{};
    std::array<char, Characters + TextWriter::kSlack> text{};
    std::uint16_t extent = 0;
    std::uint16_t room = 0;
};

// Goes once over the rows; with `out` null it only measures.
template <class Out>
class Compiler {
public:
    constexpr Compiler(Out* out, Style style) : out_(out), style_(style) {}

    template <class Rows>
    constexpr void run(const Rows& rows) {
        for (const Row& row : rows)
            for (std::size_t i = 0; i < row.count; ++i)
                this->row(row, i);
        step({Step::End, 0, 0, 0, 0, 0, 0});
        if (out_) {
            out_->extent = static_cast<std::uint16_t>(extent_);
            out_->room = static_cast<std::uint16_t>(room_ + characters_);
            if (room_ + characters_ > 0xFFFF || extent_ > kMaxExtent)
                fail("the layout is too large");
        }
    }

    constexpr Measure measured() const { return {steps_, characters_, helpers_}; }
    constexpr Helper helper(std::size_t i) const {
        return seen_[i].made ? Helper{.put = seen_[i].made->put} : Helper{.names = seen_[i].names};
    }

private:
    constexpr void row(const Row& row, std::size_t i) {
        if (row.kind == Row::Line) {
            value(row, i);
            return;
        }
        std::size_t skip = 0;
        std::size_t skippedCharacters = 0;
        if (row.optional) {
            skip = steps_;
            step({Step::SkipZero, 0, 0, size8(row.values[0].size), place(row.values[0], row, i), 0,
                  0});
            skippedCharacters = characters_;
        }
        // Else the closing tag would pass for the group's when a body is made safe.
        if (row.kind == Row::Element && !group_.empty() && row.tag.starts_with(group_))
            fail("the tag begins with that of its group");
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
            // The text behind the last value is part of what is skipped.
            step({Step::Literal, 0, 0, 0, 0, 0, 0});
            if (out_) {
                out_->steps[skip].aux = static_cast<std::uint8_t>(steps_ - skip - 1);
                out_->steps[skip].extra =
                    static_cast<std::uint16_t>(characters_ - skippedCharacters);
            }
        }
    }

    constexpr void tag(const Row& row, std::size_t i) {
        bool first = true;
        for (std::size_t at = 0; at < row.tag.size(); ++at) {
            if (row.tag[at] != '%') {
                character(style_ == Style::Spaced ? tagCharacter(row.tag[at], first) : row.tag[at]);
            } else {
                const Format f = parse(row.tag, at);
                numeral(i, f.digits, f.letter == 'x' ? 16 : 10);
            }
            first = false;
        }
        if (row.tag.empty() || row.tag.find_first_of("<>&") != std::string_view::npos)
            fail("not a tag");
    }

    constexpr void value(const Row& row, std::size_t i) {
        std::size_t next = 0;
        for (std::size_t at = 0; at < row.format.size(); ++at) {
            if (row.format[at] != '%') {
                requireSafe(row.format.substr(at, 1));
                character(row.format[at]);
                continue;
            }
            if (next == std::size(row.values) || row.values[next].kind == Value::None)
                fail("more formats than values");
            put(parse(row.format, at), row.values[next++], row, i);
        }
        if (next < std::size(row.values) && row.values[next].kind != Value::None)
            fail("more values than formats");
    }

    struct Format {
        unsigned digits;
        char letter;
    };
    // Reads the format at the "%" at `at` and leaves `at` on its last character.
    static constexpr Format parse(std::string_view text, std::size_t& at) {
        Format f{0, 0};
        if (++at < text.size() && text[at] == '0')
            ++at;
        else if (at < text.size() && isDigit(text[at]))
            fail("a width is filled up with zeros here");
        for (; at < text.size() && isDigit(text[at]); ++at)
            f.digits = f.digits * 10 + static_cast<unsigned>(text[at] - '0');
        while (at < text.size() && text[at] == 'l')
            ++at;
        if (at == text.size() || f.digits > 16)
            fail("not a format");
        f.letter = text[at];
        return f;
    }

    constexpr void put(const Format& f, const Value& v, const Row& row, std::size_t i) {
        if (v.kind == Value::Index) {
            numeral(i, f.digits, f.letter == 'x' ? 16 : 10);
            return;
        }
        const bool words = v.kind != Value::Number;
        if (words != (f.letter == 's'))
            fail("%s is for texts and names, the other formats are for numbers");
        Step s{Step::Unsigned, 0, 0, size8(v.size), place(v, row, i), 0, 0};
        switch (v.kind) {
        case Value::Name:
            s.op = Step::Name;
            s.aux = helperIndex(v);
            room_ += v.names->room;
            break;
        case Value::Bit:
            if (v.names->count != 2 || (v.bit != kAnyBit && v.bit >= v.size * 8))
                fail("not a bit");
            s.op = Step::Bit;
            s.bit = v.bit;
            s.aux = helperIndex(v);
            room_ += v.names->room;
            break;
        case Value::Function:
            s.op = Step::Function;
            s.aux = helperIndex(v);
            room_ += v.made->room;
            break;
        case Value::Text:
        case Value::Trimmed:
            s.op = v.kind == Value::Text ? Step::Text : Step::Trimmed;
            s.extra = v.size;
            break;
        default:
            numberStep(f, v, s);
        }
        step(s);
    }

    constexpr void numberStep(const Format& f, const Value& v, Step& s) {
        switch (f.letter) {
        case 'd':
            s.op = v.size == 4 ? Step::Signed : Step::Unsigned;
            break;
        case 'u':
            break;
        case 'x':
        case 'X':
            s.op = f.letter == 'x' ? Step::Lower : Step::Upper;
            s.aux = static_cast<std::uint8_t>(f.digits ? f.digits : 1);
            if (s.op == Step::Upper && s.aux == 8 && v.size == 4)
                s.op = Step::Upper4x8;
            break;
        case 'p':
            s.op = Step::Pointer;
            break;
        case 'f':
            s.op = Step::Float;
            room_ += kFloatRoom;
            break;
        default:
            fail("no such format");
        }
        // What a number can fill; what is written in blocks beyond that falls into the slack.
        const unsigned digits[] = {0, 3, 5, 8, 11, 13, 15, 17, 20};
        room_ += std::max<std::size_t>({digits[v.size], 2u * v.size + 2, f.digits});
        if (f.digits && f.letter != 'x' && f.letter != 'X')
            fail("only hexadecimal numbers have a width");
        if ((f.letter == 'f' || f.letter == 'p') && v.size != 4)
            fail("the format is for 32 bits");
    }

    constexpr std::uint16_t place(const Value& v, const Row& row, std::size_t i) {
        const std::size_t at = v.at + i * row.step;
        if (v.kind != Value::Text && v.kind != Value::Trimmed && at + v.size > extent_)
            extent_ = at + v.size;
        if (at > 0xFFFF)
            fail("the offset is too large");
        return static_cast<std::uint16_t>(at);
    }
    static constexpr std::uint8_t size8(std::size_t size) {
        return static_cast<std::uint8_t>(size);
    }

    constexpr std::uint8_t helperIndex(const Value& wanted) {
        for (std::size_t i = 0; i < helpers_; ++i)
            if (seen_[i].names == wanted.names && seen_[i].made == wanted.made)
                return static_cast<std::uint8_t>(i);
        if (helpers_ == std::size(seen_))
            fail("too many name tables and functions");
        for (std::size_t i = 0; wanted.names && i < wanted.names->count; ++i)
            requireSafe(wanted.names->at(i));
        seen_[helpers_] = wanted;
        return static_cast<std::uint8_t>(helpers_++);
    }

    // Our own texts are not made safe again when a body is.
    static constexpr void requireSafe(std::string_view text) {
        for (char c : text)
            if (c == '=' || kSafeCharacters[static_cast<unsigned char>(c)] != c)
                fail("the text would not pass makeSafeString as it is");
    }

    constexpr void numeral(std::size_t value, unsigned digits, unsigned base) {
        char text[20] = {};
        std::size_t n = 0;
        for (; value != 0 || n < (digits ? digits : 1); value /= base)
            text[n++] = "0123456789abcdef"[value % base];
        while (n > 0)
            character(text[--n]);
    }
    constexpr void literal(std::string_view text) {
        for (char c : text)
            character(c);
    }
    constexpr void character(char c) {
        if (out_)
            out_->text[characters_] = c;
        ++characters_;
        ++lead_;
    }
    constexpr void step(Step s) {
        s.lead = static_cast<std::uint16_t>(lead_);
        lead_ = 0;
        if (out_)
            out_->steps[steps_] = s;
        ++steps_;
    }

    Out* out_;
    Style style_;
    std::string_view group_; // tag of the open one; groups don't nest
    std::size_t steps_ = 0;
    std::size_t characters_ = 0;
    std::size_t lead_ = 0;
    std::size_t helpers_ = 0;
    std::size_t extent_ = 0;
    std::size_t room_ = 0;
    Value seen_[16] = {};
};

// No two values on the same bytes, but for different bits of one word and rows that say so.
template <class Rows>
constexpr bool disjoint(const Rows& rows) {
    const auto placed = [](const Value& v) {
        return v.kind != Value::None && v.kind != Value::Index && v.size != 0;
    };
    const auto clash = [&](const Row& a, const Row& b, const Value& v, const Value& w) {
        if (v.kind == Value::Bit && w.kind == Value::Bit && v.at == w.at && v.bit != w.bit)
            return false;
        for (std::size_t i = 0; i < a.count; ++i)
            for (std::size_t j = 0; j < b.count; ++j) {
                const std::size_t p = v.at + i * a.step;
                const std::size_t q = w.at + j * b.step;
                if (p < q + w.size && q < p + v.size)
                    return true;
            }
        return false;
    };
    for (const Row* a = std::begin(rows); a != std::end(rows); ++a)
        for (const Row* b = a + 1; b != std::end(rows); ++b)
            for (const Value& v : a->values)
                for (const Value& w : b->values)
                    if (placed(v) && placed(w) && !a->second && !b->second && clash(*a, *b, v, w))
                        return false;
    return true;
}

template <const auto& Rows, Style S>
inline constexpr Compiler kMeasured = [] {
    static_assert(disjoint(Rows), "two rows read the same bytes; mark one as a second view");
    Compiler<Compiled<1, 1>> measure(nullptr, S);
    measure.run(Rows);
    return measure;
}();

template <const auto& Rows, Style S>
inline constexpr auto kCompiled = [] {
    constexpr Measure size = kMeasured<Rows, S>.measured();
    Compiled<size.steps, size.characters> out;
    Compiler(&out, S).run(Rows);
    return out;
}();

// Apart from the rest, which holds no pointers and so needs no relocation.
template <const auto& Rows, Style S>
inline constexpr auto kHelpers = [] {
    std::array<Helper, kMeasured<Rows, S>.measured().helpers> helpers{};
    for (std::size_t i = 0; i < helpers.size(); ++i)
        helpers[i] = kMeasured<Rows, S>.helper(i);
    return helpers;
}();

} // namespace layout_compiler

// The compiled form of a table of rows.
template <const auto& Rows, Style S = Style::Spaced>
inline constexpr Layout kLayout{
    layout_compiler::kCompiled<Rows, S>.steps.data(),
    layout_compiler::kCompiled<Rows, S>.text.data(),
    layout_compiler::kHelpers<Rows, S>.data(),
    layout_compiler::kCompiled<Rows, S>.extent,
    layout_compiler::kCompiled<Rows, S>.room,
};

// Layouts that a code selects, one behind the other: a set costs the relocations of its helpers and
// no more. The catalogue reads `rows`.
template <Style S, const auto&... Rows>
class LayoutSet {
public:
    static constexpr std::size_t size = sizeof...(Rows);
    static constexpr std::span<const Row> rows[size] = {Rows...};

    static Layout at(std::size_t i) {
        const Place& place = kPacked.places[i];
        return {kPacked.steps.data() + place.step, kPacked.text.data() + place.text,
                kHelpers.data() + place.helper, place.extent, place.room};
    }

private:
    struct Place {
        std::uint16_t step = 0;
        std::uint16_t text = 0;
        std::uint16_t helper = 0;
        std::uint16_t extent = 0;
        std::uint16_t room = 0;
    };
    struct Packed {
        std::array<Place, size> places{};
        std::array<Step, (layout_compiler::kCompiled<Rows, S>.steps.size() + ...)> steps{};
        std::array<char, TextWriter::kSlack +
                             (layout_compiler::kMeasured<Rows, S>.measured().characters + ...)>
            text{};
    };
    static constexpr Packed kPacked = [] {
        Packed all;
        std::size_t i = 0;
        Place next{};
        const auto add = [&](const auto& compiled, const layout_compiler::Measure& measured) {
            std::copy(compiled.steps.begin(), compiled.steps.end(), all.steps.begin() + next.step);
            std::copy_n(compiled.text.begin(), measured.characters, all.text.begin() + next.text);
            next.extent = compiled.extent;
            next.room = compiled.room;
            all.places[i++] = next;
            next.step = static_cast<std::uint16_t>(next.step + measured.steps);
            next.text = static_cast<std::uint16_t>(next.text + measured.characters);
            next.helper = static_cast<std::uint16_t>(next.helper + measured.helpers);
        };
        (add(layout_compiler::kCompiled<Rows, S>, layout_compiler::kMeasured<Rows, S>.measured()),
         ...);
        static_assert(sizeof all.text <= 0xFFFF);
        return all;
    }();
    static constexpr auto kHelpers = [] {
        std::array<Helper, (layout_compiler::kHelpers<Rows, S>.size() + ...)> all{};
        auto next = all.begin();
        ((next = std::copy(layout_compiler::kHelpers<Rows, S>.begin(),
                           layout_compiler::kHelpers<Rows, S>.end(), next)),
         ...);
        return all;
    }();
};

// Writes the elements of the structure at the start of `view`.
void write(TextWriter& out, const Layout& layout, RecordView view);

// `text` without the blanks at both ends.
std::string_view trimBlanks(std::string_view text);

} // namespace Pegasus::mpu
