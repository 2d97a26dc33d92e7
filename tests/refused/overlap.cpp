// Must not compile: two rows read the same bytes.
#include "event/TableCompiler.h"

using namespace Pegasus::mpu;

inline constexpr Row kTimerRows[] = {
    {"Thread_Index", "%d", u32(0)},
    {"State", "%d", u16(2)},
};
static_assert(accepted<kTimerRows>);
