// The command's own options, for those who describe them: manual page and completions.
#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace Pegasus::tool {

using Texts = std::vector<std::string>;

// What a person can type at one place of the command line.
struct Argument {
    Texts names; // "--format"; none for a positional argument
    std::string type;
    Texts choices; // all that is allowed, where that is a list
    std::string description;
    std::string defaultValue;
    bool takesValue;
    bool repeats;

    explicit Argument(const CLI::Option& option);
    bool positional() const { return names.empty(); }
    // What stands for its value: "FILE", "one|two".
    std::string value() const;
    // The description and the default value.
    std::string explanation() const;
};

// All but the hidden ones, the positional ones last.
std::vector<Argument> argumentsOf(const CLI::App& app);

std::vector<const CLI::App*> commandsOf(const CLI::App& app);

std::string joined(const Texts& texts, std::string_view between);

} // namespace Pegasus::tool
