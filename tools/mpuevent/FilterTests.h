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
// A field or an element that compares as "NAME=VALUE" or with another sign says: by number where
// both sides are integers, else as text.
EventTest whereTest(const std::string& condition, bool ignoreCase);

} // namespace Pegasus::tool
