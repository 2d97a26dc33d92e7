// All decoders' layout tables in one place, for the record reference and the sample writer.
#pragma once

#include "event/Catalogue.h"

#include <span>

namespace Pegasus::mpu {

// In the order of their source bytes.
std::span<const Module> modules();

} // namespace Pegasus::mpu
