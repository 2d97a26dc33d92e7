#pragma once

#include "decoders/generic/Unhandled.h"

namespace Pegasus {

MPUEVENT_UNHANDLED(MSMMP)

} // namespace Pegasus
