// Events by what their fields and elements say.
#include "formats/NamedValues.h"
#include "tools/mpuevent/FilterTests.h"
#include "tools/mpuevent/Integer.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>

namespace Pegasus::tool {

namespace {

struct Comparison {
    std::string_view sign;
    bool less, equal, greater; // which of these make it true
    bool all = false;          // for all values of the name, instead of any
};
constexpr Comparison kComparisons[] = {
    // Of two that fit, the longer one first.
    {"!=", true, false, true, true}, {"<=", true, true, false}, {">=", false, true, true},
    {"=", false, true, false},       {"<", true, false, false}, {">", false, false, true},
};

class Where {
public:
    Where(std::string_view name, const Comparison& comparison, std::string_view value)
        : values_(std::string(name)), comparison_(comparison), text_(value),
          number_(Integer::from(text_)) {}

    bool holds(const DecodedEvent& event) {
        const std::vector<std::string_view>& values = values_.of(event);
        const auto fits = [this](std::string_view value) {
            const std::strong_ordering order = compare(trimmed(value));
            return order < 0   ? comparison_.less
                   : order > 0 ? comparison_.greater
                               : comparison_.equal;
        };
        return comparison_.all ? !values.empty() && std::all_of(values.begin(), values.end(), fits)
                               : std::any_of(values.begin(), values.end(), fits);
    }

private:
    std::strong_ordering compare(std::string_view value) const {
        if (number_)
            if (const std::optional<Integer> number = Integer::from(value))
                return *number <=> *number_;
        return value <=> text_;
    }

    NamedValues values_;
    const Comparison& comparison_;
    const std::string text_;
    const std::optional<Integer> number_;
};

} // namespace

EventTest whereTest(const std::string& condition, bool) {
    const std::string_view text = condition;
    const std::size_t at = text.find_first_of("!=<>");
    const std::string_view name = trimmed(text.substr(0, at));
    if (at != text.npos && !name.empty())
        for (const Comparison& comparison : kComparisons)
            if (text.substr(at).starts_with(comparison.sign))
                return [where = std::make_shared<Where>(
                            name, comparison, trimmed(text.substr(at + comparison.sign.size())))](
                           const DecodedEvent& event) { return where->holds(event); };
    throw Wrong{fmt::format("\"{}\" is not NAME=VALUE, nor with one of != < <= > >=", condition)};
}

} // namespace Pegasus::tool
