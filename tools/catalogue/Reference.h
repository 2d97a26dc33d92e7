// The record reference: what every decoder knows of its records, from the layout tables.
#pragma once

#include "event/Catalogue.h"

#include <span>
#include <string>

namespace Pegasus::mpu {

enum class Page : std::uint8_t { Text, Markdown };

std::string reference(std::span<const Module> modules, Page page);

} // namespace Pegasus::mpu
