#pragma once

#include "decoders/generic/Unhandled.h"

namespace Pegasus {

MPUEVENT_UNHANDLED(OB0)

} // namespace Pegasus
