#pragma once

#include "decoders/generic/Unhandled.h"

namespace Pegasus {

MPUEVENT_UNHANDLED(OB1)

} // namespace Pegasus
