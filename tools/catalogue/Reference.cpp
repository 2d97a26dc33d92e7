#include "tools/catalogue/Reference.h"

#include "event/Avrel_Event.h"

#include <algorithm>
#include <vector>

namespace Pegasus::mpu {

namespace {

using Cells = std::vector<std::string>;

// Lays out headings, paragraphs and tables for one kind of page.
class Writer {
public:
    explicit Writer(Page page) : page_(page) {}

    void heading(unsigned level, const std::string& text) {
        if (page_ == Page::Markdown) {
            out_.append(level, '#').append(" ").append(text).append("\n\n");
        } else {
            out_.append(text).append("\n");
            if (level < 3)
                out_.append(text.size(), level == 1 ? '=' : '-').append("\n");
            out_.append("\n");
        }
    }

    void paragraph(std::string_view text) {
        if (!text.empty())
            out_.append(text).append("\n\n");
    }

    // The first row has the headings.
    void table(const std::vector<Cells>& rows) {
        std::vector<std::size_t> widths(rows[0].size());
        for (const Cells& row : rows)
            for (std::size_t i = 0; i < row.size(); ++i)
                widths[i] = std::max(widths[i], row[i].size());
        const bool markdown = page_ == Page::Markdown;
        for (std::size_t n = 0; n < rows.size(); ++n) {
            std::string line(markdown ? "|" : " ");
            for (std::size_t i = 0; i < rows[n].size(); ++i) {
                line.append(" ").append(rows[n][i]);
                if (!markdown)
                    line.append(widths[i] - rows[n][i].size() + 1, ' ');
                else
                    line.append(" |");
            }
            line.erase(line.find_last_not_of(' ') + 1);
            out_.append(line).append("\n");
            if (n == 0 && markdown) {
                out_.append("|");
                for (std::size_t i = 0; i < widths.size(); ++i)
                    out_.append("---|");
                out_.append("\n");
            }
        }
        out_.append("\n");
    }

    std::string code(std::string_view text) const {
        const std::string_view quote = page_ == Page::Markdown ? "`" : "";
        return std::string(quote).append(text).append(quote);
    }

    std::string take() { return std::move(out_); }

private:
    Page page_;
    std::string out_;
};

std::string offsetOf(const Row& row, const Value& value) {
    std::string text = std::to_string(value.at);
    if (row.count > 1)
        text.append(" + ").append(std::to_string(row.stride)).append("i");
    return text;
}

std::string kindOf(const Row&, const Value& value) {
    switch (value.kind) {
    case Value::Text:
        return value.size ? "text, at most " + std::to_string(value.size) : "text";
    case Value::Trimmed:
        return "blank-padded text of " + std::to_string(value.size);
    case Value::Custom:
        return std::to_string(value.size) + " bytes: " + std::string(value.custom->description);
    case Value::Bit:
        if (value.bit != kAnyBit)
            return "u" + std::to_string(8 * value.size) + " bit " + std::to_string(value.bit);
        [[fallthrough]];
    default:
        return "u" + std::to_string(8 * value.size);
    }
}

// What `part` says of each value of the row; once, when it says the same of all.
std::string joined(const Row& row, std::string (*part)(const Row&, const Value&)) {
    std::string text;
    for (const Value& value : row.values) {
        if (!value.isRead())
            continue;
        const std::string next = part(row, value);
        if (text != next)
            text.append(text.empty() ? "" : ", ").append(next);
    }
    return text;
}

// Nothing for what is documented.
std::string marksOf(const Row& row) {
    std::string text(nameOf(row.provenance));
    const auto add = [&](const std::string& what) {
        text.append(text.empty() ? "" : "; ").append(what);
    };
    if (row.count > 1)
        add(std::to_string(row.count) + " times");
    if (row.optional)
        add("unless zero");
    if (row.isOverlay)
        add("overlay");
    return text;
}

std::string bracketed(std::string_view marks) {
    return marks.empty() ? "" : " (" + std::string(marks) + ")";
}

std::string namesOf(const NameTable& table) {
    std::string text;
    for (std::size_t code = 0; code < table.codes(); ++code)
        if (!table.at(code).empty())
            text.append(std::to_string(code)).append(" ").append(table.at(code)).append("; ");
    switch (table.fallback) {
    case Fallback::Unknown:
        return text + "else Unknown (n)";
    case Fallback::Number:
    case Fallback::Decimal:
        return text + "else the number";
    case Fallback::Last:
        break;
    }
    return text.append("else ").append(table.at(table.count - 1u));
}

void putNames(Writer& out, const std::string& what, const Row& row) {
    for (const Value& value : row.values)
        if (value.kind == Value::Name)
            out.paragraph(what + ": " + namesOf(*value.names) + ".");
        else if (value.kind == Value::Bit && value.names != &kTrueFalse)
            out.paragraph(what + ": 0 " + std::string(value.names->at(0)) + "; 1 " +
                          std::string(value.names->at(1)) + ".");
}

void putRows(Writer& out, std::span<const Row> rows) {
    std::vector<Cells> cells{{"Offset", "Field", "Element", "Format", "Layout"}};
    for (const Row& row : rows) {
        if (row.kind == Row::Close)
            continue;
        cells.push_back(
            {joined(row, offsetOf), joined(row, kindOf),
             row.kind == Row::Open ? std::string(row.tag) + " (group)" : std::string(row.tag),
             row.format.empty() ? "" : out.code(row.format), marksOf(row)});
    }
    out.table(cells);
    for (const Row& row : rows)
        putNames(out, out.code(row.tag), row);
}

std::string keyName(const Key& key) {
    if (key.at == offsetof(EmpEvLogMsg_s, eventId))
        return "event id";
    if (key.at == offsetof(EmpEvLogMsg_s, payloadVersion))
        return "payload version";
    return "u" + std::to_string(8 * key.size) + " at record offset " + std::to_string(key.at);
}

std::string keyOf(const Key& key) {
    return keyName(key) + " " + std::to_string(key.value);
}

std::string keysOf(std::span<const Key> keys) {
    std::string text;
    for (const Key& key : keys)
        text.append(text.empty() ? "" : ", ").append(keyOf(key));
    return text;
}

// The structures of a module, numbered in the order of first use.
class Structures {
public:
    explicit Structures(const Module& module) : prefix_(std::to_string(module.source) + ".") {}

    // One of a single row without names is told where it is used instead.
    static bool isShort(std::span<const Row> rows) {
        return rows.size() == 1 &&
               std::none_of(std::begin(rows[0].values), std::end(rows[0].values),
                            [](const Value& value) { return value.kind == Value::Name; });
    }
    std::string number(std::span<const Row> rows) {
        const auto found = std::find_if(all_.begin(), all_.end(), [&](std::span<const Row> known) {
            return known.data() == rows.data() && known.size() == rows.size();
        });
        const auto index = found - all_.begin();
        if (found == all_.end())
            all_.push_back(rows);
        return prefix_ + std::to_string(index + 1);
    }
    void put(Writer& out) const {
        for (std::size_t i = 0; i < all_.size(); ++i) {
            out.heading(4, "Structure " + prefix_ + std::to_string(i + 1));
            putRows(out, all_[i]);
        }
    }

private:
    std::string prefix_;
    std::vector<std::span<const Row>> all_;
};

// "u32 at 8, bit 3 of u8 at 12"
std::string placesOf(const Row& row, std::size_t base) {
    std::string text;
    for (const Value& value : row.values)
        if (value.isRead())
            text.append(text.empty() ? "" : ", ")
                .append(kindOf(row, value))
                .append(" at ")
                .append(std::to_string(base + value.at));
        else if (value.kind == Value::EventName)
            text.append(text.empty() ? "" : ", ").append("the title");
    return text;
}

constexpr const char* kEventName = "the text on the left";
bool isEventName(const Row& row) {
    return row.format == "%s" && row.values[0].kind == Value::EventName;
}

std::string lineOf(const Writer& out, const Row& line) {
    if (line.format.empty())
        return "";
    const std::string places = placesOf(line, 0);
    return isEventName(line) ? kEventName
                             : out.code(line.format) + (places.empty() ? "" : ": " + places);
}

std::string pieceOf(const Writer& out, const Piece& piece, Structures& structures) {
    const std::string at = piece.at == 0 ? "" : " at " + std::to_string(piece.at);
    std::string text;
    if (piece.kind == Piece::Custom) {
        text = piece.custom->description;
        if (!piece.custom->rows.empty())
            text.append(" Structure ")
                .append(structures.number(piece.custom->rows))
                .append(at)
                .append(".");
        return text + bracketed(nameOf(piece.custom->provenance));
    }
    if (!Structures::isShort(piece.rows))
        return "structure " + structures.number(piece.rows) + at;
    const Row& row = piece.rows[0];
    const std::string places = placesOf(row, piece.at);
    text.append(out.code(row.tag)).append(places.empty() && !isEventName(row) ? " " : ": ");
    text.append(isEventName(row) ? kEventName : places.empty() ? std::string(row.format) : places);
    return text + bracketed(marksOf(row));
}

std::string summaryOf(const Writer& out, const Summary& summary) {
    if (summary.custom)
        return std::string(summary.custom->description) +
               bracketed(nameOf(summary.custom->provenance));
    return lineOf(out, summary.row) + bracketed(nameOf(summary.row.provenance));
}

std::string piecesOf(const Writer& out, std::span<const Piece> pieces, Structures& structures) {
    std::string text;
    for (const Piece& piece : pieces)
        if (piece.kind == Piece::Rows || piece.kind == Piece::Custom)
            text.append(text.empty() ? "" : "; ").append(pieceOf(out, piece, structures));
    return text;
}

std::string codesOf(const EventTable& table, const Codes& codes) {
    std::string text;
    if (table.major.kind != Value::None)
        text.append(std::to_string(codes.major)).append("/");
    if (codes.isAny())
        return text.append("any");
    text.append(std::to_string(codes.first));
    if (codes.last != codes.first)
        text.append(" to ").append(std::to_string(codes.last));
    return text;
}

std::string titleOf(const Title& title) {
    std::string text(title.other);
    if (!title.isOne())
        text.append("; warning: ").append(title.warning).append("; error: ").append(title.error);
    return text;
}

std::string selectorOf(const Value& number) {
    return keyName({number.at, static_cast<std::uint8_t>(number.size), 0});
}

void putTable(Writer& out, const EventTable& table, std::span<const EventRow* const> rows,
              Structures& structures) {
    if (!table.heading.empty())
        out.heading(3, std::string(table.heading));
    std::string text;
    const auto say = [&](const std::string& what, const std::string& value) {
        if (!value.empty())
            text.append(text.empty() ? "" : " ").append(what).append(value).append(".");
    };
    say("Records with ", keysOf(table.keys));
    if (table.major.kind != Value::None)
        say("The first code is the ", selectorOf(table.major));
    if (table.minor.kind != Value::None)
        say(table.major.kind != Value::None ? "The second is the " : "The code is the ",
            selectorOf(table.minor));
    say("The title is ", lineOf(out, table.title));
    for (const Value& value : table.title.values)
        if (value.kind == Value::Name)
            say("Titles: ", namesOf(*value.names));
    say("Before the data: ", piecesOf(out, table.frame, structures));
    say("Every body begins with: ", piecesOf(out, table.head, structures));
    say("Every body ends with: ", piecesOf(out, table.tail, structures));
    if (table.dataAt != sizeof(EmpEvLogMsg_s))
        say("The data are at record offset ", std::to_string(table.dataAt));
    out.paragraph(text);
    putNames(out, "Title", table.title);
    out.paragraph(table.note);
    // Where all have titles of another kind, the rows' are names.
    const char* const title = table.title.format.empty() ? "Title" : "Name";
    std::vector<Cells> cells{{"Code", title, "Summary", "Body", "Layout"}};
    for (const EventRow* row : rows)
        cells.push_back({codesOf(table, row->codes), titleOf(row->title),
                         summaryOf(out, row->summary), piecesOf(out, row->pieces, structures),
                         std::string(nameOf(row->provenance))});
    out.table(cells);
}

void putModule(Writer& out, const Module& module, const CodeFilter& wanted) {
    const CString source = Avrel_Event(nullptr, 0).sourceFromEmpValue(module.source).getCString();
    out.heading(2, std::to_string(module.source) + " " + static_cast<const char*>(source) + ": " +
                       std::string(module.decoder));
    out.paragraph(module.note);
    Structures structures(module);
    for (const EventTable* table : module.tables) {
        std::vector<const EventRow*> rows;
        for (const EventRow& row : table->rows)
            if (wanted.passes(row.codes))
                rows.push_back(&row);
        if (!rows.empty())
            putTable(out, *table, rows, structures);
    }
    structures.put(out);
    if (!module.codes.empty()) {
        std::vector<Cells> rows{{"Code", "Meaning"}};
        for (const Code& code : module.codes)
            rows.push_back({std::to_string(code.code), std::string(code.text)});
        out.table(rows);
    }
}

// Each module with its codes, for a search on the page.
void putIndex(Writer& out, std::span<const Module> modules) {
    std::vector<Cells> cells{{"Module", "Decoder", "Codes"}};
    for (const Module& module : modules) {
        std::string codes;
        for (const EventTable* table : module.tables) {
            codes.append(codes.empty() ? "" : "; ").append(table->heading);
            const char* before = table->heading.empty() ? "" : ": ";
            for (const EventRow& row : table->rows) {
                codes.append(before).append(codesOf(*table, row.codes));
                before = ", ";
            }
        }
        cells.push_back({std::to_string(module.source), std::string(module.decoder),
                         codes.empty() ? "see the module" : codes});
    }
    out.table(cells);
}

} // namespace

std::string reference(std::span<const Module> modules, Page page, const CodeFilter& wanted) {
    Writer out(page);
    if (wanted.isAll()) {
        out.heading(1, "Record reference");
        out.paragraph("Made from the tables of the decoders by " + out.code("mpuevent formats") +
                      ". All numbers are big-endian; u24 is a number of three bytes. A record "
                      "begins with its 152-byte header, so payload offset 0 is record offset 152. "
                      "Offsets of an event count from the start of its data, which is that of the "
                      "payload unless the table says otherwise; offsets in a structure count from "
                      "its own start.");
        out.paragraph("The last column says how sure a layout is: nothing for a documented one, "
                      "\"inferred\" for one that fits between known places or that a sister "
                      "structure has, \"assumed\" for one that this project settled.");
        if (page == Page::Markdown)
            putIndex(out, modules);
    }
    for (const Module& module : modules)
        putModule(out, module, wanted);
    return out.take();
}

} // namespace Pegasus::mpu
