// XML and CSV as other programs read them. Not where the programs are cross-compiled: the libraries
// are those of the build machine.
#pragma once

#ifdef MPUEVENT_PARSERS

#include "fuzz/Target.h"

#include <csv.h>
#include <expat.h>
#include <type_traits>
#include <vector>

namespace Pegasus::fuzz {

inline void requireXml(std::string_view text) {
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), XML_ParserFree);
    if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) !=
        XML_STATUS_OK)
        requireSame(text.substr(static_cast<std::size_t>(XML_GetCurrentByteIndex(parser.get()))),
                    {}, XML_ErrorString(XML_GetErrorCode(parser.get())));
}

// By RFC 4180, to the letter.
inline std::vector<std::vector<std::string>> parseCsv(std::string_view text) {
    struct Table {
        std::vector<std::vector<std::string>> rows{1};
        csv_parser parser;
        Table() {
            require(csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) == 0, "a parser");
            csv_set_space_func(&parser, [](unsigned char) { return 0; }); // blanks are kept
        }
        Table(const Table&) = delete;
        ~Table() { csv_free(&parser); }
    } table;
    const auto cell = [](void* data, std::size_t size, void* to) {
        static_cast<Table*>(to)->rows.back().emplace_back(static_cast<const char*>(data), size);
    };
    const auto row = [](int, void* to) { static_cast<Table*>(to)->rows.emplace_back(); };
    require(csv_parse(&table.parser, text.data(), text.size(), cell, row, &table) == text.size() &&
                csv_fini(&table.parser, cell, row, &table) == 0,
            csv_strerror(csv_error(&table.parser)));
    table.rows.pop_back();
    return std::move(table.rows);
}

} // namespace Pegasus::fuzz

#endif
