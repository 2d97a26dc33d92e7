// Trace lines of the library. Tracing is on until the process suppresses it.
#pragma once

#include "event/Export.h"

#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

namespace Pegasus {

// All operations may be called from any thread at any time.
class MPUEVENT_EXPORT ProviderTraceServices {
public:
    // 0 when trace lines are to be written.
    static int ptsGetTraceSuppressForPid();
    static void ptsSetTraceSuppressForPid(int suppress);
    // Where trace lines go; null (the default) is standard output. The stream stays the caller's.
    static void ptsSetTraceStream(std::FILE* stream);

    static std::string ptsGetTimeStampString(); // local time as asctime has it, without line feed
    static std::string ptsGetPidString();
    // "source:line", padded with blanks to `width`.
    static std::string ptsGetFileLineString(const char* source, int line, unsigned int width);
    static std::string ptsGetIndentString(); // empty: the library's lines do not nest

    // Writes the parts as one trace line, unless suppressed. Callers with parts that cost
    // something to make ask ptsGetTraceSuppressForPid() first.
    static void ptsTrace(const char* source, int line,
                         std::initializer_list<std::string_view> message);
};

} // namespace Pegasus
