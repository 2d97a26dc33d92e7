// Bytes as text, in the forms in which they reach people by mail.
#pragma once

#include "capture/ByteSource.h"

#include <memory>
#include <optional>
#include <string_view>

namespace Pegasus::capture {

struct TextForm {
    enum Kind : std::uint8_t {
        // Bytes of two digits. A line may begin with an offset and a colon; two blanks after its
        // bytes end it then. Bytes without blanks between them may be joined by ":", "-" or ",".
        Plain,
        // Dumps. What has no offset is the text around it, a line "*" stands for repetitions of the
        // line before, and an offset that does not follow is a fault.
        Colon,  // xxd, tcpdump -x: as above, with an offset in each line
        Column, // hexdump, od: an offset without a colon
        // Numbers "0x41" and "\x41", as in C; an even number of digits is so many bytes.
        List,
        Base64,
    };
    Kind kind = Plain;
    unsigned radix = 16;   // of the offsets
    unsigned width = 1;    // bytes of a printed number
    bool lowFirst = false; // is its last byte the first one?
};

// The bytes that a text stands for. Each of its forms may be quoted with "> " and, base64 excepted,
// have comments from "#" to the end of the line. A line with anything else is reported with line
// and column (from 1) and counts up to there.
class TextSource : public ByteSource {
public:
    // The text begins in this line.
    TextSource(ByteSource& text, FaultHandler report, TextForm form = {}, std::uint64_t line = 1);
    std::size_t read(std::uint8_t* to, std::size_t room) override;
    bool ready() override { return handedOut_ != size_ || text_.ready(); }
    int failure() const override { return text_.failure(); }
    bool growing() const override { return text_.growing(); }

private:
    bool takeText();
    std::size_t partOf(std::string_view text) const;
    void take(std::string_view text);
    void takePlain(std::string_view text, std::size_t at);
    void takeDump(std::string_view text, std::size_t at);
    void repeat(std::uint64_t until);
    void endRepetition();
    void takeList(std::string_view text, std::size_t at);
    void takeBase64(std::string_view text, std::size_t at);
    void endGroup(std::size_t at);
    std::string place(std::size_t at) const;
    void wrong(std::size_t at, std::string_view what);
    void foreign(std::string_view text, std::size_t at, std::string_view digit);
    std::uint8_t* room(std::size_t count);
    void filled(const std::uint8_t* end) { size_ = static_cast<std::size_t>(end - bytes_.data()); }

    ByteSource& text_;
    FaultHandler report_;
    const TextForm form_;

    std::vector<char> buffer_; // of the text
    std::size_t next_ = 0;     // of it, not taken yet
    std::size_t searched_ = 0; // no line ends before
    std::size_t end_ = 0;
    bool ended_ = false; // the text has no more

    std::vector<std::uint8_t> bytes_; // decoded
    std::size_t size_ = 0;
    std::size_t handedOut_ = 0;

    std::uint64_t line_;
    std::uint64_t column_ = 0; // of the first character of this part of the line, from 0
    bool begun_ = false;       // the line has been taken in part
    bool skipping_ = false;    // the rest of the line does not count

    std::optional<std::uint64_t> expected_; // offset in a dump
    std::vector<std::uint8_t> last_;        // bytes of its last line
    std::uint64_t repeated_ = 0;            // number of the line "*" whose end is not known yet

    char listed_ = 0; // the last character of a list, but "x" for a number, "," where one must come
    bool comment_ = false;

    std::uint32_t digits_ = 0; // of a base64 group
    unsigned digitCount_ = 0;
};

// A text whose form was found.
struct RecognisedText {
    TextForm form;
    std::string name;
    std::size_t start = 0;  // of the first line in that form
    std::uint64_t line = 1; // the number of that one
    std::size_t end = 0;    // of the lines that told
};

enum class TextVerdict : std::uint8_t {
    Binary,
    Foreign,   // text that stands for no bytes
    Undecided, // more has to be seen
    Found,
};
// Looks at the first lines of a text, no further than needed: the answer doesn't depend on how much
// is there.
class TextRecogniser {
public:
    TextRecogniser();
    ~TextRecogniser();
    // The text begins with what it was in the call before. `whole`: no more of it is to come.
    TextVerdict look(std::string_view text, bool whole, RecognisedText& found);

private:
    class Forms;

    std::unique_ptr<Forms> forms_;
    std::size_t at_ = 0;     // where the next line begins
    std::size_t looked_ = 0; // after that, when its beginning has been looked at
    std::uint64_t line_ = 0;
};

} // namespace Pegasus::capture
