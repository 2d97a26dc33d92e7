// What --help shows, and what a wrong command line is answered with.
#pragma once

#include "tools/mpuevent/CommandLine.h"

namespace Pegasus::tool {

// Text in lines of at most `width` characters, as far as words allow. Lines that begin with a blank
// stay as they are.
std::string wrapped(std::string_view text, std::size_t width);

// Fits into the terminal. Commands that are added later get the same.
void setHelp(CLI::App& app);

// " (did you mean "decode"?)" for the first argument that the parser knew nothing about; empty when
// nothing is like it.
std::string suggestionFor(const CLI::App& parsed);

} // namespace Pegasus::tool
