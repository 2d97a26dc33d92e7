#include "platform/cmap/CMAPErrorCodes.h"

#include <iterator>

namespace Pegasus {

namespace {

struct ErrorCode {
    Uint32 code;
    char text[44];
};

// Codes are 0 for success and 0x1000 + index for failures.
constexpr ErrorCode kErrorCodes[] = {
    {0x0000, "Success"},
    {0x1001, "Unknown error"},
    {0x1002, "Invalid parameter"},
    {0x1003, "Out of memory"},
    {0x1004, "Not initialized"},
    {0x1005, "Already initialized"},
    {0x1006, "Not supported"},
    {0x1007, "Busy"},
    {0x1008, "Timed out"},
    {0x1009, "Access denied"},
    {0x100A, "Object not found"},
    {0x100B, "Object already exists"},
    {0x100C, "Object in use"},
    {0x100D, "Invalid class identifier"},
    {0x100E, "Invalid object data"},
    {0x100F, "Invalid attribute"},
    {0x1010, "Invalid transaction"},
    {0x1011, "Lock not held"},
    {0x1012, "Lock refused"},
    {0x1013, "Invalid message"},
    {0x1014, "Invalid message length"},
    {0x1015, "Invalid message version"},
    {0x1016, "Unexpected message"},
    {0x1017, "Unknown protocol"},
    {0x1018, "Unknown destination"},
    {0x1019, "Connection refused"},
    {0x101A, "Connection lost"},
    {0x101B, "Stream not open"},
    {0x101C, "Read from stream failed"},
    {0x101D, "Write to stream failed"},
    {0x101E, "Stream ended before the end of the message"},
    {0x101F, "Stream write was short"},
};
constexpr unsigned int kUnknown = 1;

static_assert(kErrorCodes[CMAPErrorCodes::kReadFailed].code == 0x101C);
static_assert(kErrorCodes[CMAPErrorCodes::kReadShort].code == 0x101E);

} // namespace

Uint32 CMAPErrorCodes::getCode(unsigned int index) {
    return index < std::size(kErrorCodes) ? kErrorCodes[index].code : 0;
}

unsigned int CMAPErrorCodes::getIndex(Uint32 code) {
    for (unsigned int i = 0; i < std::size(kErrorCodes); ++i)
        if (kErrorCodes[i].code == code)
            return i;
    return kUnknown;
}

String CMAPErrorCodes::getTextForIndex(unsigned int index) {
    return kErrorCodes[index < std::size(kErrorCodes) ? index : kUnknown].text;
}

} // namespace Pegasus
