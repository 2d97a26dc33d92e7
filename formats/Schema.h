// The JSON Schema of the events that mpuevent writes.
#pragma once

#include "event/Catalogue.h"

#include <span>
#include <string>

namespace Pegasus::formats {

// Draft 7. The names of elements and titles that it gives as examples are those that the modules'
// sample records show.
std::string jsonSchema(std::span<const mpu::Module> modules);

} // namespace Pegasus::formats
