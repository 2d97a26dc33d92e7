// Tests of decoded events, made from what is typed.
#pragma once

#include "formats/DecodedEvent.h"

#include <functional>
#include <string>

namespace Pegasus::tool {

using namespace formats;

// Holds scratch memory: one per thread.
using EventTest = std::function<bool(const DecodedEvent&)>;

// What is thrown for a value that makes no test.
struct Wrong {
    std::string what;
};

// A match in what the text format shows.
EventTest grepTest(const std::string& pattern, bool ignoreCase);

} // namespace Pegasus::tool
