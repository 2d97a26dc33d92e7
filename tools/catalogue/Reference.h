// The record reference: what every decoder knows of its records, from its tables.
#pragma once

#include "event/Catalogue.h"

#include <optional>
#include <span>
#include <string>

namespace Pegasus::mpu {

enum class Page : std::uint8_t { Text, Markdown };

// Which events are told: all, or those with a code ("1040", as the first or the
// second), or with both codes ("1/32").
struct CodeFilter {
    std::optional<std::uint32_t> major;
    std::optional<std::uint32_t> minor;

    bool isAll() const { return !minor; }
    bool passes(const Codes& codes) const {
        const bool isMinor = minor && codes.first <= *minor && *minor <= codes.last;
        if (major)
            return codes.major == *major && isMinor;
        return !minor || codes.major == *minor || ((codes.major == 0 || !codes.isAny()) && isMinor);
    }
};

std::string reference(std::span<const Module> modules, Page page, const CodeFilter& wanted = {});

} // namespace Pegasus::mpu
