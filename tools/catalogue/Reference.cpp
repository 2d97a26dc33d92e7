#include "tools/catalogue/Reference.h"

#include "event/Avrel_Event.h"

#include <map>
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
        text.append(" + ").append(std::to_string(row.step)).append("i");
    return text;
}

std::string kindOf(const Row&, const Value& value) {
    switch (value.kind) {
    case Value::Text:
        return value.size ? "text, at most " + std::to_string(value.size) : "text";
    case Value::Trimmed:
        return "blank-padded text of " + std::to_string(value.size);
    case Value::Function:
        return std::to_string(value.size) + " bytes: " + std::string(value.made->shows);
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
        if (value.kind == Value::None || value.kind == Value::Index)
            continue;
        const std::string next = part(row, value);
        if (text != next)
            text.append(text.empty() ? "" : ", ").append(next);
    }
    return text;
}

std::string marksOf(const Row& row) {
    std::string text = row.mark == Mark::Chosen ? "chosen" : row.mark == Mark::Fits ? "fits" : "";
    const auto add = [&](const std::string& what) {
        text.append(text.empty() ? "" : "; ").append(what);
    };
    if (row.count > 1)
        add(std::to_string(row.count) + " times");
    if (row.optional)
        add("unless zero");
    if (row.second)
        add("second view");
    return text;
}

std::string namesOf(const NameTable& table) {
    std::string text;
    for (std::size_t code = 0; code < table.codes(); ++code)
        if (!table.at(code).empty())
            text.append(std::to_string(code)).append(" ").append(table.at(code)).append("; ");
    switch (table.otherwise) {
    case Otherwise::Unknown:
        return text + "else Unknown (n)";
    case Otherwise::Number:
    case Otherwise::Decimal:
        return text + "else the number";
    case Otherwise::Last:
        break;
    }
    return text.append("else ").append(table.at(table.count - 1u));
}

void putPart(Writer& out, const Part& part) {
    std::vector<Cells> rows{{"Offset", "Field", "Element", "Format", "Layout"}};
    std::vector<std::string> names;
    for (const Row& row : part.rows) {
        if (row.kind == Row::Close)
            continue;
        rows.push_back(
            {joined(row, offsetOf), joined(row, kindOf),
             row.kind == Row::Open ? std::string(row.tag) + " (group)" : std::string(row.tag),
             row.format.empty() ? "" : out.code(row.format), marksOf(row)});
        for (const Value& value : row.values)
            if (value.kind == Value::Name)
                names.push_back(out.code(row.tag) + ": " + namesOf(*value.names) + ".");
            else if (value.kind == Value::Bit && value.names != &kTrueFalse)
                names.push_back(out.code(row.tag) + ": 0 " + std::string(value.names->at(0)) +
                                "; 1 " + std::string(value.names->at(1)) + ".");
    }
    out.table(rows);
    for (const std::string& line : names)
        out.paragraph(line);
}

std::string keyOf(const Key& key) {
    if (key.at == offsetof(EmpEvLogMsg_s, eventId))
        return "event id " + std::to_string(key.value);
    if (key.at == offsetof(EmpEvLogMsg_s, payloadVersion))
        return "payload version " + std::to_string(key.value);
    return "u" + std::to_string(8 * key.size) + " at " + std::to_string(key.at) + " is " +
           std::to_string(key.value);
}

std::string keysOf(std::span<const Key> keys) {
    std::string text;
    for (const Key& key : keys)
        text.append(text.empty() ? "" : ", ").append(keyOf(key));
    return text;
}

void putModule(Writer& out, const Module& module) {
    const CString source = Avrel_Event(nullptr, 0).sourceFromEmpValue(module.source).getCString();
    out.heading(2, std::to_string(module.source) + " " + static_cast<const char*>(source) + ": " +
                       std::string(module.decoder));
    out.paragraph(module.note);
    if (!module.codes.empty()) {
        std::vector<Cells> rows{{"Code", "Meaning"}};
        for (const Code& code : module.codes)
            rows.push_back({std::to_string(code.code), std::string(code.text)});
        out.table(rows);
    }
    std::map<const Row*, std::string> shown; // in which section
    for (const Section& section : module.sections) {
        out.heading(3, std::string(section.title));
        const std::string keys = keysOf(section.keys);
        out.paragraph(keys.empty() ? keys : "Record: " + keys + ".");
        out.paragraph(section.note);
        for (const Part& part : section.parts) {
            const auto [first, fresh] = shown.emplace(part.rows.data(), section.title);
            const std::string at =
                std::string(part.title) + ", from record offset " + std::to_string(part.at);
            out.paragraph(at + (fresh ? ":" : ": as under \"" + first->second + "\"."));
            if (fresh)
                putPart(out, part);
        }
    }
}

} // namespace

std::string reference(std::span<const Module> modules, Page page) {
    Writer out(page);
    out.heading(1, "Record reference");
    out.paragraph("Made from the layout tables by " + out.code("mpuevent formats") +
                  ". All numbers are big-endian; u24 is a number of three bytes. A record begins "
                  "with its 152-byte header, so payload offset 0 is record offset 152. Offsets in "
                  "a table count from the start of its structure.");
    out.paragraph("The last column says how sure a layout is: nothing for a known place, "
                  "\"fits\" for one that fits between known places or that a sister structure "
                  "has, \"chosen\" for one that this project settled.");
    for (const Module& module : modules)
        putModule(out, module);
    return out.take();
}

} // namespace Pegasus::mpu
