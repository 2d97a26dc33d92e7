// Integer types and macros of the CIM framework, for builds without one installed.
//
// The installed framework's headers bring <sys/param.h> and the C headers below into every source
// file, and with them macros such as MIN, MAX, HZ, isset and roundup. They are included here too,
// so that a name that clashes with them fails in this build already.

#ifndef Pegasus_Config_h
#define Pegasus_Config_h

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/param.h>

#define PEGASUS_NAMESPACE_BEGIN namespace Pegasus {
#define PEGASUS_NAMESPACE_END }
#define PEGASUS_NAMESPACE(X) Pegasus::X
#define PEGASUS_USING_PEGASUS using namespace Pegasus
#define PEGASUS_STD(X) std::X

#define PEGASUS_EXPORT __attribute__((visibility("default")))
#define PEGASUS_HIDDEN __attribute__((visibility("hidden")))
#define PEGASUS_IMPORT __attribute__((visibility("default")))
#define PEGASUS_COMMON_LINKAGE PEGASUS_EXPORT

#define PEGASUS_FORMAT(FORMAT_INDEX, FIRST_ARGUMENT)                                               \
    __attribute__((format(printf, FORMAT_INDEX, FIRST_ARGUMENT)))

/// "No such index", and "to the end" where a count is asked for.
#define PEG_NOT_FOUND Uint32(-1)

namespace Pegasus {

using Boolean = bool;
using Uint8 = unsigned char;
using Sint8 = signed char;
using Uint16 = unsigned short;
using Sint16 = short;
using Uint32 = unsigned int;
using Sint32 = int;
// long long, as in the framework: not the same type as uint64_t on every machine.
using Uint64 = unsigned long long;
using Sint64 = long long;
using Real32 = float;
using Real64 = double;

} // namespace Pegasus

#endif
