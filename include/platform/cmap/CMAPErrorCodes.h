// Error codes of the management-protocol library and their texts.
#pragma once

#include "event/Export.h"

#include <Pegasus/Common/String.h>

namespace Pegasus {

class MPUEVENT_EXPORT CMAPErrorCodes {
public:
    // Entries of the table that this library uses.
    static constexpr unsigned int kReadFailed = 28;
    static constexpr unsigned int kReadShort = 30;

    // The code at `index`; 0 (success) beyond the table.
    static Uint32 getCode(unsigned int index);
    // The index of `code`; that of "Unknown error" when no entry has it.
    static unsigned int getIndex(Uint32 code);
    // The text at `index`; that of "Unknown error" beyond the table.
    static String getTextForIndex(unsigned int index);
};

} // namespace Pegasus
