#include "event/AvrelEvent.h"

#include "event/TextWriter.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>

namespace Pegasus {

namespace {

// A backslash at the end of `text` that no other backslash escapes becomes ".".
void mendEnd(char* text, std::size_t length) {
    if (length > 0 && text[length - 1] == '\\' && (length < 2 || text[length - 2] != '\\'))
        text[length - 1] = '.';
}

} // namespace

AvrelEvent::AvrelEvent(const EmpEvLogMsg_s* record, unsigned int length)
    : Avrel_Event(record, length) {}

AvrelEvent::~AvrelEvent() = default;

void AvrelEvent::addEntry(char* tag, char* format, ...) {
    const std::size_t tagLength = std::strlen(tag);
    mendEnd(tag, tagLength);

    // The value is measured where most fit; only a longer one costs an allocation.
    char room[2048];
    char* value = room;
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int printed = std::vsnprintf(room, sizeof room, format, arguments);
    va_end(arguments);
    const std::size_t length = printed > 0 ? static_cast<std::size_t>(printed) : 0;
    std::unique_ptr<char[]> longer;
    if (length >= sizeof room) {
        longer.reset(new (std::nothrow) char[length + 1]);
        value = longer.get();
        if (value)
            std::vsnprintf(value, length + 1, format, again);
    }
    va_end(again);
    if (!value)
        throw std::bad_alloc();
    mendEnd(value, length);

    mpu::StackWriter<2048> entry;
    entry.open({tag, tagLength}).literal({value, length}).close({tag, tagLength});
    entry.literal(std::string_view("\0", 1));
    // The writer's own characters, NUL included: nobody else sees them.
    appendBody(const_cast<char*>(entry.view().data()));
}

void AvrelEvent::appendBody(char* text) {
    const int n = static_cast<int>(std::strlen(text));
    if (bodyCapacity_ == 0)
        reserve(std::max(2048, (2 * n + 15) / 16 * 16));
    bodyLength_ += n;
    if (bodyLength_ >= bodyCapacity_)
        reserve((2 * bodyLength_ + 15) / 16 * 16);
    body_.append(mpu::toString(text));
}

void AvrelEvent::reserve(int capacity) {
    bodyCapacity_ = capacity;
    body_.reserveCapacity(static_cast<Uint32>(capacity));
}

} // namespace Pegasus
