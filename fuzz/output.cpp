// What the command writes of any event must be what its format says, to a parser that isn't ours.
#include "fuzz/Invariants.h"
#include "tools/mpuevent/Body.h"
#include "tools/mpuevent/Keys.h"
#include "tools/mpuevent/Printer.h"

#include <nlohmann/json.hpp>

namespace Pegasus::fuzz {
namespace {

using namespace tool;

std::string printed(const Format& format, bool fields, Avrel_Event& event) {
    const std::unique_ptr<Printer> printer = format.make({fields, false});
    mpu::BodyWriter once;
    printer->begin(once);
    printer->print(event, once);
    printer->end(once);
    // A printer keeps nothing of an event but the memory.
    mpu::BodyWriter twice;
    printer->begin(twice);
    printer->print(event, twice);
    printer->end(twice);
    requireSame(twice.view(), once.view(), format.name);
    return std::string(once.view());
}

void requireJson(const std::string& line, const Said& event, bool fields) {
    static constexpr const char* kTexts[] = {"enclosureSerialNumber",
                                             "controllerSerialNumber",
                                             "source",
                                             "category",
                                             "eventTypeText",
                                             "eventID",
                                             "summary",
                                             "body"};
    static constexpr const char* kNumbers[] = {"controllerSlotID", "eventLogInstanceNumber",
                                               "sequenceID", "timestamp", "eventType"};
    const nlohmann::json object = nlohmann::json::parse(line); // throws
    for (std::size_t i = 0; i < std::size(kTexts); ++i)
        requireSame(object.at(kTexts[i]).get_ref<const std::string&>(), event.texts[i], kTexts[i]);
    for (std::size_t i = 0; i < std::size(kNumbers); ++i)
        require(object.at(kNumbers[i]).get<std::uint32_t>() == event.numbers[i], kNumbers[i]);
    require(object.size() == std::size(kTexts) + std::size(kNumbers) + (fields ? 2 : 0),
            "nothing else");
}

// Tags match, and what stands between them has no character of markup but in the known entities.
void requireXml(std::string_view text) {
    std::vector<std::string_view> open;
    for (std::size_t at = text.find("?>") + 2; at < text.size();) {
        if (text[at] == '<') {
            const std::size_t end = text.find('>', at);
            require(end != text.npos, "a tag ends");
            const std::string_view tag = text.substr(at + 1, end - at - 1);
            const std::string_view name = tag.substr(0, tag.find(' '));
            if (tag.starts_with('/')) {
                require(!open.empty() && open.back() == tag.substr(1), "tags match");
                open.pop_back();
            } else {
                require(!name.empty() && name.find_first_of("\"'<&=") == name.npos &&
                            std::count(tag.begin(), tag.end(), '"') == (name != tag ? 2 : 0),
                        "tags are names with one attribute at most");
                open.push_back(name);
            }
            at = end;
        } else if (text[at] == '&') {
            const std::string_view entity = text.substr(at, text.find(';', at) - at);
            require(entity.starts_with("&#") || entity == "&amp" || entity == "&lt" ||
                        entity == "&gt" || entity == "&quot" || entity == "&apos",
                    "entities are known");
        }
        ++at;
    }
    require(open.empty(), "all tags are closed");
}

// Cells by RFC 4180, all rows equally wide.
std::vector<std::string> cellsOf(std::string_view text, std::size_t rows) {
    std::vector<std::string> cells(1);
    std::size_t lines = 0;
    bool quoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        const bool twice = quoted && text.substr(at).starts_with("\"\"");
        if (c == '"' && !twice) {
            require(quoted || cells.back().empty(), "quotes surround a cell");
            quoted = !quoted;
            require(quoted || at + 1 == text.size() || std::strchr(",\r\n", text[at + 1]),
                    "quotes surround a cell");
            continue;
        }
        at += twice;
        if (!quoted && (c == ',' || c == '\n')) {
            lines += c == '\n';
            cells.emplace_back();
        } else if (quoted || c != '\r') {
            cells.back() += c;
        }
    }
    require(!quoted && lines == rows && cells.back().empty(), "rows are whole");
    cells.pop_back();
    require(cells.size() == rows * std::size(kKeys), "a row has a cell for each key");
    return cells;
}

void printAll(Avrel_Event& event, bool isText) {
    const Said all = said(event);
    for (const Format& format : kFormats)
        for (bool fields : {false, true}) {
            if (fields && !format.fields)
                continue;
            const std::string_view name = format.name;
            const std::string text = printed(format, fields, event);
            require(isUtf8(text), "output is valid UTF-8");
            require(text.ends_with('\n'), "output is whole lines");
            require(name == "csv" || std::none_of(text.begin(), text.end(),
                                                  [](char c) {
                                                      return static_cast<unsigned char>(c) < ' ' &&
                                                             c != '\n' && c != '\t';
                                                  }),
                    std::string(name) + " output holds no control characters");
            if (name == "line" || name == "json")
                require(text.find('\n') == text.size() - 1, "a line is one line");
            if (name == "json" && isText)
                requireJson(text, all, fields);
            else if (name == "json")
                require(nlohmann::json::accept(text), "JSON is valid");
            if (name == "xml")
                requireXml(text);
            if (name == "csv" && !fields) {
                const std::vector<std::string> cells = cellsOf(text, 2);
                for (std::size_t i = 0; i < std::size(kKeys); ++i) {
                    requireSame(cells[i], kKeys[i].name, "a column has its name");
                    if (isText && kKeys[i].text)
                        requireSame(cells[i + std::size(kKeys)], utf8(kKeys[i].text(event)),
                                    kKeys[i].name);
                }
            }
        }
}

// Every name and every text of the pieces lies in the body, in order; groups match.
void requirePieces(const std::string& body) {
    BodyParser parser;
    const char* at = body.data();
    std::vector<std::string_view> open;
    for (const Piece& piece : parser.parse(body)) {
        for (std::string_view part : {piece.name, piece.text}) {
            if (part.empty())
                continue;
            require(part.data() >= at && part.data() + part.size() <= body.data() + body.size(),
                    "pieces lie in the body in order");
            at = part.data();
        }
        if (piece.kind == Piece::Group)
            open.push_back(piece.name);
        if (piece.kind == Piece::End) {
            require(!open.empty() && open.back() == piece.name, "groups match");
            open.pop_back();
        }
    }
    require(open.empty(), "groups end");
}

// Input: a record. It is decoded; then the same bytes, as UTF-16 of any kind, are all texts of an
// event, which no decoder would make but a caller may.
void output(Bytes bytes) {
    const test::SuppressTrace quiet;
    bytes = bytes.first(std::min(bytes.size(), kMaxRecord));
    CMAPMessageHeader header;
    header.setMessageLength(static_cast<Uint16>(mpu::message_header::kSize + bytes.size()));
    // Without long runs of zeros, which would only cost time.
    std::string record(characters(bytes));
    if (record.size() >= sizeof(EmpEvLogMsg_s))
        mpu::storeBig(&record[offsetof(EmpEvLogMsg_s, evStructLength)],
                      static_cast<std::uint16_t>(record.size() - sizeof(EmpEvLogMsg_s)));
    Avrel_memory_istream in(record.data(), record.size());
    const std::unique_ptr<Avrel_Event> event(MPUEvent(header, in).create_Avrel_Event());
    printAll(*event, true);
    requirePieces(utf8(event->getBody()));
    requirePieces(std::string(characters(bytes)));

    std::vector<Char16> units;
    for (Input input(bytes); !input.rest().empty();) {
        const unsigned low = input.byte();
        units.push_back(static_cast<Uint16>(low < 0xC0 ? low : low << 8 | input.byte()));
    }
    const String wild =
        units.empty() ? String() : String(units.data(), static_cast<Uint32>(units.size()));
    event->setEnclosureSerialNumber(wild);
    event->setControllerSerialNumber(wild);
    event->setSource(wild);
    event->setCategory(wild);
    event->setEventID(wild);
    event->setSummary(wild);
    event->setBody(wild);
    printAll(*event, false);
}

} // namespace
} // namespace Pegasus::fuzz

using Pegasus::fuzz::output;
MPUEVENT_FUZZ_TARGET(output)

#ifdef MPUEVENT_LIBFUZZER
#include "fuzz/RecordMutator.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    if (seed % 2 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    using namespace Pegasus::fuzz;
    RecordMutator mutator(seed);
    std::string record(characters({data, size}));
    if (seed % 8 == 1)
        record = mutator.record();
    else
        mutator.twist(record);
    size = std::min(record.size(), maxSize);
    std::memcpy(data, record.data(), size);
    return size;
}
#endif
