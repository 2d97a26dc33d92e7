#include "decoders/datapath/Entries.h"

namespace Pegasus::mpu::datapath {

namespace {

// addEntry() takes its format, like its tag, without const.
void add(AvrelEvent& event, char* tag, const char* value) {
    char format[] = "%s";
    event.addEntry(tag, format, value);
}

} // namespace

void Entries::structure(const Layout& layout, RecordView view) {
    write(out_, layout, view);
    if (!event_)
        return;
    // "<tag>value</tag>" again and again, cut in place: these characters are the writer's own, and
    // neither tags nor numbers hold a "<".
    out_.put(std::string_view("\0", 1));
    for (char* tag = const_cast<char*>(out_.view().data()); *tag++ == '<';) {
        char* value = std::strchr(tag, '>');
        *value++ = '\0';
        char* closer = std::strchr(value, '<');
        *closer = '\0';
        const std::size_t size = std::strlen(tag);
        add(*event_, tag, value);
        tag = closer + 3 + size;
    }
    out_.clear();
}

void Entries::text(const char* tag, std::string_view value) {
    if (event_) {
        out_.text(value).put(std::string_view("\0", 1));
        add(*event_, const_cast<char*>(tag), out_.view().data());
        out_.clear();
        return;
    }
    // As addEntry() mends a value that would escape the tag behind it.
    const bool mend = value.ends_with('\\') && !value.ends_with("\\\\");
    const std::string_view name(tag);
    out_.open(name).text(value.substr(0, value.size() - mend));
    if (mend)
        out_.put(".");
    out_.close(name);
}

} // namespace Pegasus::mpu::datapath
