// What the catalogue says of the records of the VPI module, which are text.
#pragma once

#include "event/Catalogue.h"

namespace Pegasus::mpu::vpi {

inline constexpr Key kKeys[] = {{150, 2, 1}};
inline constexpr Fill kText[] = {{152, "Link monitor report\n"
                                       "port id=3, state = up,  speed=1000\n"
                                       "retrained twice\n"
                                       "errors=0"}};

inline constexpr Section kSections[] = {
    {"General message",
     kKeys,
     {},
     kText,
     "Lines of text. One with `key=value` pairs becomes a `Values` group, another one `Text1`, "
     "`Text2` ... A value ends at a comma or blank."},
};

inline constexpr Module kModule{10, "VPI8P_Event", "Event identifier 1; all others are dumped.",
                                kSections};

} // namespace Pegasus::mpu::vpi
