// What the catalogue says of the records of the AWR module, which have no fixed layout.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::awr {

using namespace std::string_view_literals;

inline constexpr Fill kTree[] = {{152, "\0\0\0\2\0\0\0\x64" // container of 100 bytes
                                       "\0\0\0\3\0\0\0\x0C"
                                       "Fan warning\0"
                                       "\0\0\0\0\0\0\0\x11"
                                       "Fan 2 turns slow\0"
                                       "\0\0\0\2\0\0\0\x11" // container inside it
                                       "\0\0\0\0\0\0\0\x09"
                                       "2100 rpm\0"
                                       "\0\0\0\1\0\0\0\x16"
                                       "<Fan=2;\x02\x08\x34\xFF|speed&rpm\0"sv}};

inline constexpr Section kSections[] = {
    {"Tree of items",
     {},
     {},
     kTree,
     "An item is a type (u32), the length of its content (u32) and the content. Type 0 is a text, "
     "1 bytes, which are dumped in lines of 16, 2 a container of items, 3 the name of the event."},
};

inline constexpr Module kModule{
    9, "AWR8P_Event",
    "Any event identifier. The payload is one item. Texts become entries named `_`, the first one "
    "is the summary; lines of a dump are named by the offset of their first byte, as `_0010`.",
    kSections};

} // namespace Pegasus::mpu::awr
