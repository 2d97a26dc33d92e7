// What the command writes of any event must be what its format says, to a parser that isn't ours.
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Printer.h"
#include "fuzz/Invariants.h"
#include "fuzz/Parsers.h"

#include <nlohmann/json.hpp>

namespace Pegasus::fuzz {
namespace {

using namespace formats;

std::string printed(const Format& format, bool fields, const DecodedEvent& event) {
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
                                             "body",
                                             "layout"};
    static constexpr const char* kNumbers[] = {
        "controllerSlotID", "eventLogInstanceNumber", "sequenceID", "timestamp",
        "eventType",        "missingBytes",           "unreadBytes"};
    const nlohmann::json object = nlohmann::json::parse(line); // throws
    for (std::size_t i = 0; i < std::size(kTexts); ++i)
        requireSame(object.at(kTexts[i]).get_ref<const std::string&>(), event.texts[i], kTexts[i]);
    for (std::size_t i = 0; i < std::size(kNumbers); ++i)
        require(object.at(kNumbers[i]).get<std::uint32_t>() == event.numbers[i], kNumbers[i]);
    require(object.size() == std::size(kTexts) + std::size(kNumbers) + (fields ? 2 : 0),
            "nothing else");
}

#ifdef MPUEVENT_PARSERS
void requireCsv(const std::vector<std::vector<std::string>>& rows, const DecodedEvent& event,
                bool isText) {
    require(rows.size() == 2 && rows[0].size() == rows[1].size(), "a cell for each column");
    for (std::size_t i = 0; i < std::size(kColumns) && kColumns[i].extra == Extra::None; ++i) {
        require(i < rows[0].size(), "a column for each value");
        requireSame(rows[0][i], kColumns[i].name, "a column has its name");
        if (!isText || !kColumns[i].text)
            continue;
        std::string text(event.*kColumns[i].text);
        for (std::size_t nul; (nul = text.find('\0')) != text.npos;)
            text.replace(nul, 1, "\xEF\xBF\xBD"); // readers of CSV stop at one
        requireSame(rows[1][i], text, kColumns[i].name);
    }
}
#endif

void printAll(Avrel_Event& event, bool isText) {
    const Said all = said(event);
    EventDecoder decoder;
    const DecodedEvent& decoded = decoder.take(event);
    for (const Format& format : kFormats)
        for (bool fields : {false, true}) {
            if (fields && !format.hasFields)
                continue;
            const std::string_view name = format.name;
            const std::string text = printed(format, fields, decoded);
            require(isUtf8(text), "output is valid UTF-8");
            require(text.ends_with('\n'), "output is whole lines");
            require(name == "csv" || std::none_of(text.begin(), text.end(),
                                                  [](char c) {
                                                      return static_cast<unsigned char>(c) < ' ' &&
                                                             c != '\n' && c != '\t';
                                                  }),
                    std::string(name) + " output holds no control characters");
            if (name == "line" || name == "json" || name == "otlp")
                require(text.find('\n') == text.size() - 1, "a line is one line");
            if (name == "json" && isText)
                requireJson(text, all, fields);
            else if (name == "json" || name == "otlp")
                require(nlohmann::json::accept(text), "JSON is valid");
#ifdef MPUEVENT_PARSERS
            if (name == "xml")
                requireXml(text);
            if (name == "csv")
                requireCsv(parseCsv(text), decoded, isText);
#endif
        }
}

// Every name and every text of the items is in the body, in order; groups match.
void requireItems(const std::string& body) {
    BodyParser parser;
    const char* at = body.data();
    std::vector<std::string_view> open;
    for (const BodyItem& item : parser.parse(body)) {
        for (std::string_view part : {item.name, item.text}) {
            if (part.empty())
                continue;
            require(part.data() >= at && part.data() + part.size() <= body.data() + body.size(),
                    "items are in the body in order");
            at = part.data();
        }
        if (item.type == BodyItem::Group)
            open.push_back(item.name);
        if (item.type == BodyItem::End) {
            require(!open.empty() && open.back() == item.name, "groups match");
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
    requireItems(utf8(event->getBody()));
    requireItems(std::string(characters(bytes)));

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
