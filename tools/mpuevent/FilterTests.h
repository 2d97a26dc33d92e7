// Tests of decoded events, made from what is typed.
#pragma once

#include "formats/Objects.h"

#include <algorithm>
#include <functional>
#include <memory>
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
// An object of this kind: its number or its name.
template <ObjectKindIndex Kind>
EventTest objectTest(const std::string& id, bool) {
    return [id, finder = std::make_shared<ObjectFinder>()](const DecodedEvent& event) {
        const std::vector<ObjectReference>& found = finder->of(event);
        return std::any_of(found.begin(), found.end(), [&](const ObjectReference& one) {
            return one.kind == Kind && one.id == id;
        });
    };
}

} // namespace Pegasus::tool
