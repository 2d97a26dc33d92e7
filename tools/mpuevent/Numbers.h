// Options whose values are numbers.
#pragma once

#include "tools/mpuevent/Integer.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>
#include <limits>
#include <type_traits>

namespace Pegasus::tool {

// `to` is a number or an optional one. (The parser's own conversion takes -1 for the largest.)
template <class Number>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Number& to,
                       const std::string& description, std::uint64_t least = 0,
                       std::uint64_t most = UINT64_MAX) {
    constexpr bool isPlain = std::is_integral_v<Number>;
    if constexpr (isPlain)
        most = std::min<std::uint64_t>(most, std::numeric_limits<Number>::max());
    const auto take = [&to, name, least, most](const std::string& text) {
        const std::optional<Integer> number = Integer::from(text);
        if (!number || number->negative || number->magnitude < least || number->magnitude > most)
            throw CLI::ValidationError(
                name.substr(0, name.find(',')),
                fmt::format("Value {} not in range {} to {}", text, least, most));
        if constexpr (isPlain)
            to = static_cast<Number>(number->magnitude);
        else
            to = number->magnitude;
    };
    CLI::Option* option =
        app.add_option_function<std::string>(name, take, description)->type_name("N");
    if constexpr (isPlain)
        option->default_str(std::to_string(to));
    return option;
}

} // namespace Pegasus::tool
