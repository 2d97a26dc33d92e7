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
    // The same as one text, with "; " between values.
    std::string_view joined(const DecodedEvent& event);
    const std::string& name() const { return name_; }

private:
    const std::string name_;
    const std::string tag_;
    const Column* const column_;
    BodyParser parser_;
    mpu::StackWriter<64> number_;
    std::vector<std::string_view> values_;
    std::string joined_;
};

} // namespace Pegasus::formats
