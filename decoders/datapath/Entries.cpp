#include "decoders/datapath/Entries.h"

namespace Pegasus::mpu::datapath {

void putEntry(TextWriter& body, std::string_view tag, Untrusted text) {
    const std::string_view value = text.raw();
    const bool escapes = value.ends_with('\\') && !value.ends_with("\\\\");
    body.open(tag).untrusted(Untrusted(value.substr(0, value.size() - escapes)));
    body.literal(escapes ? "." : "").close(tag);
}

void addEntries(AvrelEvent& event, TextWriter& run, std::string_view text) {
    run.literal(std::string_view("\0", 1));
    // Cut in place: these characters are the writer's own. Values that are no texts hold no "<".
    for (char* tag = const_cast<char*>(run.view().data()); *tag++ == '<';) {
        char* value = std::strchr(tag, '>');
        *value++ = '\0';
        const std::size_t size = std::strlen(tag);
        char* closer = tag == text ? std::strrchr(value, '<') : std::strchr(value, '<');
        *closer = '\0';
        char format[] = "%s"; // addEntry() takes its format, like its tag, without const
        event.addEntry(tag, format, value);
        tag = closer + 3 + size;
    }
}

} // namespace Pegasus::mpu::datapath
