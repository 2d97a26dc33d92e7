// The growing buffer in which every body, summary and title is composed.
#pragma once

#include "event/Digits.h"
#include "event/RecordView.h"

#include <Pegasus/Common/String.h>

namespace Pegasus::mpu {

// Text from a record becomes a framework string through here alone: valid UTF-8 passes, every byte
// that is not part of a valid sequence becomes "?". The string is built in place: the framework's
// strings don't move, and counting references of temporaries costs more than short texts do.
void assignText(String& to, std::string_view text);
// The same for a text that is known to be ASCII: names, titles, what was made safe.
void assignAscii(String& to, std::string_view text);
inline String toString(std::string_view text) {
    String made;
    assignText(made, text);
    return made;
}

// What becomes of texts from the record.
enum class Sanitize : std::uint8_t {
    Yes, // the finished text is sanitized as a whole: assignTo() does that
    No,  // they are written verbatim
};

// Appends characters. Use a StackWriter, which starts in stack memory and allocates only what does
// not fit there.
class TextWriter {
public:
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    // Room for `count` more characters and kSlack after them, to be written at the returned
    // position; commit() takes over what was written.
    char* reserve(std::size_t count) {
        if (static_cast<std::size_t>(end_ - next_) < count + kSlack) [[unlikely]]
            grow(count + kSlack);
        return next_;
    }
    void commit(char* next) { next_ = next; }

    // After every reserve(), so that short constant texts can be copied in whole blocks.
    static constexpr std::size_t kSlack = 32;

    // Our own texts, which are ASCII.
    TextWriter& literal(std::string_view text) {
        commit(putText(reserve(text.size()), text));
        return *this;
    }
    // Out of line, to keep the library small: what is written field by field goes through a layout.
    TextWriter& decimal(std::uint32_t value);
    TextWriter& decimal64(std::uint64_t value);
    TextWriter& integer(std::uint32_t value); // "%d": 2^31 and above print negative
    TextWriter& hexUpper(std::uint64_t value, unsigned minDigits);
    TextWriter& hexLower(std::uint64_t value, unsigned minDigits);
    TextWriter& hexBytes(std::string_view bytes);
    TextWriter& hexBytes(Untrusted bytes) { return hexBytes(bytes.raw()); }
    // A text from the record. Where the finished text is made safe, a text without "<" can be made
    // safe at once with the same result; one with "<" leaves itself and all that follow it to the
    // general pass of assignTo().
    TextWriter& untrusted(Untrusted text);

    // Bytes from the record that are written verbatim in either case: tags, and what the general
    // pass is to judge.
    TextWriter& raw(Untrusted run) {
        unchecked_ = true;
        return literal(run.raw());
    }

    // Constant texts that are known when this is compiled.
    TextWriter& open(std::string_view tag);
    TextWriter& close(std::string_view tag);
    // An element whose value is a text from the record; the tag is used as it is.
    TextWriter& element(std::string_view tag, Untrusted value, std::string_view after);

    std::string_view view() const { return {begin_, static_cast<std::size_t>(next_ - begin_)}; }
    // How many characters there are before `next`.
    std::size_t position(const char* next) const { return static_cast<std::size_t>(next - begin_); }
    void clear() {
        next_ = begin_;
        markup_ = unchecked_ = false;
    }
    // Before anything is written.
    void setSanitize(Sanitize sanitize) { sanitize_ = sanitize; }
    // Whether finish() will change more than single characters.
    bool hasMarkup() const { return markup_; }
    // Says that raw() bytes are to come that may hold markup.
    void expectMarkup() { markup_ = true; }

    // The finished text: made safe when the texts in it have to be, valid in any case.
    void assignTo(String& to) const;
    // The same as valid UTF-8, in place.
    std::string_view finish();
    String string() const {
        String made;
        assignTo(made);
        return made;
    }

protected:
    TextWriter(char* room, std::size_t size, Sanitize sanitize)
        : begin_(room), next_(room), end_(room + size), room_(room), sanitize_(sanitize) {}
    ~TextWriter();

private:
    void grow(std::size_t count);

    char* begin_;
    char* next_;
    char* end_;
    char* room_;
    Sanitize sanitize_;
    bool markup_ = false;    // the general pass is needed
    bool unchecked_ = false; // some of it may not be ASCII
};

template <std::size_t Size>
class StackWriter : public TextWriter {
public:
    explicit StackWriter(Sanitize sanitize = Sanitize::No) : TextWriter(room_, Size, sanitize) {}

private:
    char room_[Size];
};

// Sizes: all but strange bodies fit the first, the longest structure's among them; all but strange
// titles and summaries the second. A decode has one of each on a stack that may be small.
using BodyWriter = StackWriter<10240>;
using LineWriter = StackWriter<384>;

// Groups of 16 bytes: "0x0010=0011223344556677 | 8899AABBCCDDEEFF;", without line breaks.
void putDump(TextWriter& out, std::string_view bytes);

// Runs of characters outside markup, made safe: at most two characters for one.
char* putSafeRun(char* out, std::string_view text);

} // namespace Pegasus::mpu
