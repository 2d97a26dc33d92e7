// Inputs of every kind: text, compression, and what holds no messages.
#include "capture/Recognise.h"
#include "tests/CommandFixture.h"
#include "tests/Dribble.h"

#include <gmock/gmock.h>
#ifdef MPUEVENT_GZIP
#include <zlib.h>
#endif
#ifdef MPUEVENT_XZ
#include <lzma.h>
#endif
#ifdef MPUEVENT_ZSTD
#include <zstd.h>
#endif

namespace Pegasus::test {

namespace {

using namespace capture;
using testing::ElementsAre;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

std::string drain(ByteSource& source) {
    std::string bytes;
    std::uint8_t some[1000];
    while (const std::size_t got = source.read(some, sizeof some))
        bytes.append(reinterpret_cast<const char*>(some), got);
    return bytes;
}

struct Read {
    std::string bytes;
    std::string description;
    std::string refusal;
    Framing framing;
    Texts reports;
};

Read readOnce(const std::string& all, std::size_t step, InputHints hints) {
    Read read;
    Dribble source(all, step);
    const RecognisedInput input(source, hints,
                                [&](const std::string& what) { read.reports.push_back(what); });
    read.description = input.description();
    read.refusal = input.refusal();
    read.framing = input.framing();
    read.bytes = drain(input.bytes());
    return read;
}

// How the bytes come must not matter.
Read read(const std::string& all, InputHints hints = {}) {
    const Read once = readOnce(all, all.size() + 1, hints);
    const Read again = readOnce(all, 7, hints);
    EXPECT_EQ(again.bytes, once.bytes);
    EXPECT_EQ(again.description, once.description);
    EXPECT_EQ(again.refusal, once.refusal);
    EXPECT_EQ(again.framing, once.framing);
    EXPECT_EQ(again.reports, once.reports);
    return once;
}

// 217 bytes, with lines that repeat.
std::string sample() {
    return messageOf(RecordBuilder(23, 101).enclosure("ENC0").controller("CTL0").u8(0, 0x7A));
}

std::string put(const char* format, auto value) {
    char text[40];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

enum : unsigned {
    kRepeats = 1,  // lines, as "*"
    kLowFirst = 2, // in the numbers
    kTotal = 4,    // in the end, after a padded number
};

// How a program prints bytes.
struct Form {
    const char* name;
    const char* recognised;
    const char* offset = "";
    std::size_t line = 16;  // bytes
    std::size_t number = 1; // bytes
    const char* before = "";
    const char* after = " ";
    const char* end = "\n"; // of a line
    unsigned flags = 0;
    const char* first = ""; // line
    const char* last = "";  // line
};

std::string print(const Form& form, std::string bytes) {
    std::string text = form.first;
    const std::size_t size = bytes.size();
    if (form.flags & kTotal)
        bytes.resize((size + form.number - 1) / form.number * form.number);
    std::string before;
    for (std::size_t at = 0; at < bytes.size(); at += form.line) {
        const std::string line = bytes.substr(at, form.line);
        if ((form.flags & kRepeats) && line == before && at + form.line < bytes.size()) {
            text += text.ends_with("*\n") ? "" : "*\n";
            continue;
        }
        before = line;
        text += *form.offset ? put(form.offset, at) : "";
        for (std::size_t i = 0; i < line.size(); i += form.number) {
            std::string number = line.substr(i, form.number);
            if (form.flags & kLowFirst)
                std::reverse(number.begin(), number.end());
            text += form.before;
            for (const char c : number)
                text += put("%02x", static_cast<unsigned char>(c));
            text += form.after;
        }
        text += form.end;
    }
    return text + ((form.flags & kTotal) ? put(form.offset, size) + "\n" : "") + form.last;
}

const Form kForms[] = {
    {"xxd", "xxd text", "%08zx: ", 16, 2, "", " ", " ..AB..\n"},
    {"xxd -a", "xxd text", "%08zx: ", 16, 1, "", " ", " #\n", kRepeats},
    {"xxd -e", "xxd text of 4-byte words, low byte first", "%08zx: ", 16, 4, "", " ", "\n",
     kLowFirst},
    {"quoted xxd", "xxd text", "> %08zx: ", 16, 1, "", " ", "  > #\r\n"},
    {"xxd in a mail", "xxd text from line 4 on", "%zx: ", 20, 1, "", " ", "\n", 0,
     "Dear all,\n\nadded 3 dumps: look\n", "\nRegards\n"},
    {"xxd -p", "hex text", "", 30, 1, "", ""},
    {"xxd -p -u, one line", "hex text", "", 1000, 1, "", "", ""},
    {"xxd -i", "a list of 0x numbers from line 2 on", "", 12, 1, " 0x", ",", "\n", 0,
     "unsigned char log2[] = {\n", "};\nunsigned int log2_len = 217;\n"},
    {"list", "a list of 0x numbers", "", 300, 1, "0x", ", "},
    {"gdb x/8xb", "a list of 0x numbers", "0x%zx:\t", 8, 1, "0x", "\t"},
    {"hexdump -C", "hexdump -C text", "%08zx  ", 16, 1, "", " ", " |..AB #|\n", kRepeats | kTotal},
    {"hexdump -v", "hexdump text of 2-byte words, low byte first", "%07zx ", 16, 2, "", " ", "\n",
     kLowFirst | kTotal},
    {"od -tx1", "od -tx1 text", "%07zo ", 16, 1, "", " ", "\n", kRepeats | kTotal},
    {"od -Ad -tx1z", "od -tx1 text", "%07zu ", 16, 1, "", " ", " >..41 42<\n", kTotal},
    {"od -Ax -tx4 on the board", "hexdump text of 4-byte words, high byte first", "%06zx ", 16, 4,
     "", " ", "\n", kRepeats | kTotal},
    {"od -w999 -tx1", "od -tx1 text", "%07zo ", 999, 1, "", " ", "\n", kTotal},
    {"od -An -tx1", "hex text", "", 16, 1, " ", ""},
    {"Wireshark", "od -tx1 text", "%04zx  ", 16, 1, "", " ", "   ab 12 cd\n"},
    {"tcpdump -X", "tcpdump text from line 2 on", "\t0x%04zx:  ", 16, 2, "", " ", " ab..12\n", 0,
     "12:01:02.000001 IP 10.0.0.1.860 > 10.0.0.2.4000: Flags [P.], length 217\n"},
    {"aa:bb", "hex text", "", 18, 1, "", ":"},
    {"aa-bb", "hex text", "", 16, 1, "", "-"},
    {"from a Windows editor", "hex text", "", 16, 1, "", " ", "\r\n", 0, "\xEF\xBB\xBF"},
    {"commented", "hex text", "", 4, 1, "", " ", "# 12\n", 0, "# a record\n\n"},
};

void expectRecognised(const std::string& text, const std::string& bytes,
                      const std::string& recognised) {
    const Read found = read(text);
    EXPECT_EQ(found.description, recognised);
    EXPECT_EQ(found.refusal, "");
    EXPECT_EQ(found.bytes, bytes);
    EXPECT_EQ(found.reports, Texts{});
}

std::string base64(const std::string& bytes, std::size_t line, const char* end) {
    static constexpr char kDigits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::string group = bytes.substr(at, 3) + std::string(2, '\0');
        unsigned all = 0;
        for (int i = 0; i < 3; ++i)
            all = all << 8 | static_cast<unsigned char>(group[static_cast<unsigned>(i)]);
        for (const unsigned shift : {18u, 12u, 6u, 0u})
            text += kDigits[all >> shift & 63];
    }
    const std::size_t padding = (3 - bytes.size() % 3) % 3;
    text.replace(text.size() - padding, padding, padding, '=');
    for (std::size_t at = line; at < text.size(); at += line + std::strlen(end))
        text.insert(at, end);
    return text + end;
}

using Packer = std::string (*)(const std::string& bytes);
const struct Packed {
    Compression compression;
    const char* recognised;
    Packer pack; // none in a build without the library
    const char* beginning;
} kPacked[] = {
    {Compression::Gzip, "gzip data",
#ifdef MPUEVENT_GZIP
     [](const std::string& bytes) {
         std::string packed(compressBound(bytes.size()) + 32, '\0');
         z_stream stream{};
         deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
         stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
         stream.avail_in = static_cast<uInt>(bytes.size());
         stream.next_out = reinterpret_cast<Bytef*>(packed.data());
         stream.avail_out = static_cast<uInt>(packed.size());
         deflate(&stream, Z_FINISH);
         packed.resize(stream.total_out);
         deflateEnd(&stream);
         return packed;
     },
#else
     nullptr,
#endif
     "\x1F\x8B\x08"},
    {Compression::Xz, "xz data",
#ifdef MPUEVENT_XZ
     [](const std::string& bytes) {
         std::string packed(lzma_stream_buffer_bound(bytes.size()), '\0');
         std::size_t size = 0;
         lzma_easy_buffer_encode(
             1, LZMA_CHECK_CRC32, nullptr, reinterpret_cast<const std::uint8_t*>(bytes.data()),
             bytes.size(), reinterpret_cast<std::uint8_t*>(packed.data()), &size, packed.size());
         packed.resize(size);
         return packed;
     },
#else
     nullptr,
#endif
     "\xFD\x37zXZ"},
    {Compression::Zstd, "zstd data",
#ifdef MPUEVENT_ZSTD
     [](const std::string& bytes) {
         std::string packed(ZSTD_compressBound(bytes.size()), '\0');
         ZSTD_CCtx* const context = ZSTD_createCCtx();
         ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1); // as zstd(1)
         packed.resize(
             ZSTD_compress2(context, packed.data(), packed.size(), bytes.data(), bytes.size()));
         ZSTD_freeCCtx(context);
         return packed;
     },
#else
     nullptr,
#endif
     "\x28\xB5\x2F\xFD"},
};

} // namespace

TEST(Recognise, Text) {
    const std::string message = sample(), record = message.substr(64);
    ASSERT_EQ(message.size(), 217u);
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.name);
        expectRecognised(print(form, message), message, form.recognised);
        expectRecognised(print(form, record), record,
                         form.recognised + std::string(", bare records"));
        const Read given = read(print(form, message), {Framing::Message, true});
        if (*form.first == '\0' || *form.first == '#') {
            EXPECT_EQ(given.bytes, message);
        }
    }
    for (const std::size_t line : {76u, 64u, 1000u})
        for (const char* end : {"\n", "\r\n", "\n> "}) {
            expectRecognised(base64(message, line, end), message, "base64 text");
            expectRecognised(base64(record, line, end), record, "base64 text, bare records");
        }
    expectRecognised("To: me\nContent-Transfer-Encoding: base64\n\n" + base64(message, 76, "\n") +
                         "\n--boundary--\n",
                     message, "base64 text from line 4 on");
}

TEST(Recognise, BinaryInputs) {
    const std::string message = sample(), record = message.substr(64);
    const std::string zeros(1000, '\0');
    const struct {
        const char* name;
        std::string bytes;
        Framing framing;
        const char* recognised;
    } cases[] = {
        {"nothing", "", Framing::Message, ""},
        {"messages", message + message, Framing::Message, ""},
        {"records", record + record, Framing::Record, "bare records"},
        {"a message cut off in front", message.substr(9) + message, Framing::Message, ""},
        {"a record cut off in front", record.substr(9) + record + record, Framing::Record,
         "bare records"},
        {"a text in front of each", "log 1:\n" + message + "log 2:\n" + message, Framing::Message,
         ""},
        {"pcap", "\xD4\xC3\xB2\xA1" + zeros + message, Framing::Message, "a pcap file"},
        {"disk", zeros.substr(0, 510) + "\x55\xAA" + zeros + record + record, Framing::Record,
         "a disk image, bare records"},
        {"nothing known", std::string(100000, '\x01'), Framing::Message, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Read found = read(c.bytes);
        EXPECT_EQ(found.framing, c.framing);
        EXPECT_EQ(found.description, c.recognised);
        EXPECT_EQ(found.refusal, "");
        EXPECT_EQ(found.bytes, c.bytes);
    }
}

TEST(Recognise, Refusals) {
    const std::string message = sample(), record = message.substr(64);
    const InputHints messages{Framing::Message, false}, records{Framing::Record, false};
    const InputHints hexRecords{Framing::Record, true};
    const char* const noBytes = "not a capture: text without hexadecimal or base64 bytes";
    std::string words;
    for (int i = 0; i < 20000; ++i)
        words += "Decade " + std::to_string(i) + " added facade\nbed\n0x41 is A\n";
    const struct {
        std::string bytes;
        InputHints hints;
        std::string refusal;
    } cases[] = {
        {"\xFF\xD8\xFF\xE0 JFIF" + message, {}, "not a capture: a JPEG image"},
        {"PK\3\4" + message, {}, "not a capture: a ZIP archive, which must be unpacked first"},
        {"# Read me\n\nThis is 0x41, and face feed bed.\n", {}, noBytes},
        {words, {}, noBytes},
        {"41 42 43\n", {}, noBytes}, // too short for anything
        {record, messages, "holds bare records, not messages"},
        {message, records, "holds messages, not bare records"},
        {print(kForms[0], message), hexRecords, "holds messages, not bare records"},
        {message, messages, ""},
        {record, records, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(read(c.bytes, c.hints).refusal, c.refusal) << c.bytes.substr(0, 40);
}

// Of a pipe that is quiet nothing more is read than what decides.
TEST(Recognise, DoesNotWait) {
    class Quiet : public Dribble {
    public:
        using Dribble::Dribble;
        std::size_t read(std::uint8_t* to, std::size_t room) override {
            const std::size_t got = Dribble::read(to, room);
            EXPECT_NE(got, 0u);
            return got;
        }
    };
    const std::string message = sample();
    for (const std::string& all : {message, message.substr(64), print(kForms[0], message),
                                   base64(message, 76, "\n"), print(kForms[5], message)}) {
        Quiet quiet(all, 1000);
        const RecognisedInput input(quiet, {}, [](const std::string&) {});
        std::uint8_t some[1000];
        EXPECT_GE(input.bytes().read(some, sizeof some), 153u);
    }
}

TEST(Recognise, Compressed) {
    const std::string message = sample();
    std::string all;
    for (int i = 0; i < 2000; ++i)
        all += messageOf(RecordBuilder(23, 101).sequence(static_cast<unsigned>(i) * 2654435761u));
    for (const Packed& c : kPacked) {
        SCOPED_TRACE(c.recognised);
        if (!c.pack) {
            EXPECT_EQ(read(c.beginning + message).refusal,
                      c.recognised + std::string(": this build cannot unpack it"));
            continue;
        }
        const std::string packed = c.pack(all);
        const std::string twice = c.pack(packed);
        expectRecognised(packed, all, c.recognised);
        expectRecognised(packed + c.pack(message), all + message, c.recognised);
        expectRecognised(base64(c.pack(print(kForms[0], message)), 76, "\n"), message,
                         std::string("base64 text, ") + c.recognised + ", xxd text");
        EXPECT_EQ(read(c.pack("Read me.")).refusal,
                  c.recognised +
                      std::string(": not a capture: text without hexadecimal or base64 bytes"));
        EXPECT_THAT(read(c.pack(c.pack(twice))).refusal, HasSubstr("packed more than 3 times"));

        // What comes before a fault is kept.
        const std::size_t half = packed.size() / 2;
        const Read cut = read(packed.substr(0, half));
        EXPECT_GT(cut.bytes.size(), all.size() / 4);
        EXPECT_EQ(cut.bytes, all.substr(0, cut.bytes.size()));
        EXPECT_EQ(cut.reports, Texts{"compressed data, offset " + std::to_string(half) +
                                     ": the input ends too early"});
        std::string bad = packed;
        for (std::size_t i = half; i < half + 20; ++i)
            bad[i] = static_cast<char>(~bad[i]);
        const Read damaged = readOnce(bad, 1000, {});
        EXPECT_GT(damaged.bytes.size(), 1000u);
        ASSERT_EQ(damaged.reports.size(), 1u);
        EXPECT_THAT(damaged.reports[0], testing::StartsWith("compressed data, offset "));
        EXPECT_EQ(readOnce(packed + "garbage, long enough", 1000, {}).reports.size(), 1u);
    }
}

TEST(TextSource, Lines) {
    struct Case {
        const char* name;
        std::string text;
        std::string bytes;
        Texts reports;
        TextForm form = {};
    };
    const auto digit = [](const char* place, const char* what) {
        return Texts{std::string(place) + ": " + what + "; the rest of the line is ignored"};
    };
    constexpr TextForm kColon{TextForm::Colon}, kOctal{TextForm::Column, 8}, kList{TextForm::List};
    constexpr TextForm kWords{TextForm::Column, 16, 2, true}, kBase64{TextForm::Base64};
    const std::string wide(100000, ' ');
    const Case cases[] = {
        {"plain", "41 42\n4344454647\n4a4B", "ABCDEFGJK", {}},
        {"blanks and line ends", "  41\t42   43\r\n\r\n \n44", "ABCD", {}},
        {"comments", "# 41\n41 # 42\n43#44\n", "AC", {}},
        {"xxd", "00000000: 4142 4344 45  4647 zz\n0000001F: 46\n", "ABCDEF", {}},
        {"xxd, short last line",
         "00000010: 4142                                     AB\n",
         "AB",
         {}},
        {"xxd, one column", "0: 41  A\n1: 42  B", "AB", {}},
        {"xxd, 64-bit offset", "0123456789abcdef: 41", "A", {}},
        {"comment in place of bytes", "10: # 41", "", {}},
        {"long first token", "4142434445464748494a", "ABCDEFGHIJ", {}},
        {"not a digit", "41\n42 4x 43\n44", "ABD",
         digit("line 2, column 5", "\"x\" is not a hexadecimal digit")},
        {"in the first token", "4g", "",
         digit("line 1, column 2", "\"g\" is not a hexadecimal digit")},
        {"unprintable", "41 \x1b", "A",
         digit("line 1, column 4", "byte 0x1B is not a hexadecimal digit")},
        {"half a byte", "41 42 4\n43", "ABC", digit("line 1, column 7", "a byte has two digits")},
        {"half a byte at the end", "414", "A", digit("line 1, column 3", "a byte has two digits")},
        {"half a byte before a comment", "10: 4#1", "",
         digit("line 1, column 5", "a byte has two digits")},
        {"second colon", "10: 41: 42", "A",
         digit("line 1, column 7", "\":\" is not a hexadecimal digit")},
        {"offset too long", "0123456789abcdef0: 41", "\x01\x23\x45\x67\x89\xab\xcd\xef",
         digit("line 1, column 18", "\":\" is not a hexadecimal digit")},
        {"quoted", "> 41 42\n>> 43\n", "ABC", {}},
        {"joined", "41:42:43:\n44-45,46, 47", "ABCDEFG", {}},
        {"joined twice", "41::42", "A",
         digit("line 1, column 4", "\":\" is not a hexadecimal digit")},
        {"joined, and a comment", "41:#42", "A", {}},
        {"form feeds in a long line",
         std::string(251, '4') + "4\f4142434445",
         std::string(126, 'D') + "ABCDE",
         {}},
        {"a long line", "41 42" + wide + "4z 43\n44", "ABD",
         digit("line 1, column 100007", "\"z\" is not a hexadecimal digit")},
        {"repeated", "0: 41 42\n*\n8: 43\n", "ABABABABC", {}, kColon},
        {"two dumps", "8: 41 42\n\nand\n0: 43\n1: 44\n", "ABCD", {}, kColon},
        {"a lost line",
         "0: 41 42\n4: 43 44\n",
         "ABCD",
         {"line 2, column 1: offset 4, although the line before has 2 bytes"},
         kColon},
        {"a lost offset",
         "0: 41 42\n43 44\n4: 45\n",
         "ABE",
         {"line 2, column 1: no offset; the rest of the line is ignored",
          "line 3, column 1: offset 4, although the line before has 2 bytes"},
         kColon},
        {"words that look like offsets", "0: 41\nad: hoc\n1: 42", "AB", {}, kColon},
        {"nothing repeated",
         "0: # none\n*\n8: 41\n",
         "A",
         {"line 3, column 1: offset 8, although the line before has 0 bytes"},
         kColon},
        {"repeated without end",
         "0: 41\n*\n",
         "A",
         {"line 2: nothing tells how many lines are repeated"},
         kColon},
        {"repeated for ever",
         "0: 41\n*\nffffffffffffffff: 42\n",
         std::string((1 << 20) + 1, 'A') + "B",
         {"line 2: 18446744073709551614 repeated bytes; the first 1048576 are taken"},
         kColon},
        {"a dump's line too long", "0: 41\n1: " + wide + "42\n", "A",
         digit("line 2, column 1", "the line is too long"), kColon},
        {"octal", "0000000 41 42\n*\n0000010 43\n0000011\n", "ABABABABC", {}, kOctal},
        {"fault in a dump",
         "0000000 41 4g 43\n0000002 44\n",
         "AD",
         {"line 1, column 13: \"g\" is not a hexadecimal digit; the rest of the line is ignored",
          "line 2, column 1: offset 0000002, although the line before has 1 bytes"},
         kOctal},
        {"words", "0000000 4241 0043\n0000003\n", "ABC", {}, kWords},
        {"list",
         "{0x41, 0x4, // 0x00\n/* 0x00\n 0x00 */ 0x4344};\nlen = 4",
         "A\x04"
         "CD",
         {},
         kList},
        {"not in the list",
         "0x41, 66, 0x43\n0x44, 'E'",
         "AD",
         {"line 1, column 7: a number begins with 0x; the rest of the line is ignored",
          "line 2, column 7: a number begins with 0x; the rest of the line is ignored"},
         kList},
        {"a list's long line", std::string(256, 'w') + "0x41{0x42", "B", {}, kList},
        {"odd number", "0x41 0x424", "A",
         digit("line 1, column 6", "a number has an even number of hexadecimal digits"), kList},
        {"padding of nothing", "0008 \n0007\n", "", {}, kWords},
        {"base64", "QUJD\n REVG Rw==\nSA", "ABCDEFGH", {}, kBase64},
        {"not base64", "QUJD*\nREVG", "ABCDEF",
         digit("line 1, column 5", "\"*\" is not a base64 digit"), kBase64},
        {"base64, cut off", "QUJDR", "ABC",
         digit("line 2, column 1", "a base64 group has two digits or more"), kBase64},
    };
    for (const Case& c : cases)
        for (const std::size_t step : {1u, 29u, 1000u, 1000000u}) {
            SCOPED_TRACE(c.name);
            Texts reports;
            Dribble text(c.text, step);
            TextSource source(
                text, [&](const std::string& what) { reports.push_back(what); }, c.form);
            EXPECT_EQ(drain(source), c.bytes);
            EXPECT_EQ(reports, c.reports);
        }
}

using RecogniseCommandTest = CommandTest;

TEST_F(RecogniseCommandTest, SaysWhatItRecognised) {
    write("mail.txt", "Hello,\n" + print(kForms[0], message(1) + message(2)) + "2x: 41\n");
    write("photo.jpg", "\xFF\xD8\xFF\xE0 JFIF");
    write("input", message(3));
    for (const char* jobs : {"1", "2"}) {
        const Result result =
            run("decode --format line mail.txt photo.jpg - --jobs " + std::string(jobs));
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 3);
        EXPECT_EQ(result.err, "mpuevent: mail.txt: recognised as xxd text from line 2 on\n"
                              "mpuevent: photo.jpg: not a capture: a JPEG image\n");
    }
    EXPECT_EQ(run("summary --input record").err,
              "mpuevent: standard input: holds messages, not bare records\n");
}

} // namespace Pegasus::test
