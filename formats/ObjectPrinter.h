// What happened to objects, for people and for programs.
#pragma once

#include "event/TextWriter.h"
#include "formats/Objects.h"

namespace Pegasus::formats {

struct ObjectOptions {
    bool story = false;  // tell all steps
    bool colour = false; // for a terminal
    TimeOptions time{};
};

struct ObjectFormat {
    const char* name;
    const char* description;
    void (*write)(const Object& object, const ObjectOptions& options, mpu::TextWriter& out);
};

void writeTextObject(const Object& object, const ObjectOptions& options, mpu::TextWriter& out);
void writeJsonObject(const Object& object, const ObjectOptions& options, mpu::TextWriter& out);

inline constexpr ObjectFormat kObjectFormats[] = {
    {"text", "a line per object, and one per step of its story", writeTextObject},
    {"json", "a JSON object per line", writeJsonObject},
};

} // namespace Pegasus::formats
