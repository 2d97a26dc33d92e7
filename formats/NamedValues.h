// What an event says under a name.
#pragma once

#include "formats/Body.h"
#include "formats/DecodedEvent.h"

#include <string>

namespace Pegasus::formats {

struct Column;

// The value of a field that every event has, or those of the elements of that name in the body, at
// any depth. Holds scratch memory: one per thread.
class NamedValues {
public:
    explicit NamedValues(const std::string& name);
    // In order; they live until the next call or as long as the event.
    const std::vector<std::string_view>& of(const DecodedEvent& event);
    // The field, null if it is elements.
    const Column* column() const { return column_; }

private:
    const std::string name_;
    const std::string tag_;
    const Column* const column_;
    BodyParser parser_;
    mpu::StackWriter<64> number_;
    std::vector<std::string_view> values_;
};

} // namespace Pegasus::formats
