// The text routines against plain versions of themselves.
#include "fuzz/Invariants.h"

#include "event/Ascii.h"
#include "event/AvrelEvent.h"
#include "event/StringFormat.h"
#include "event/TextWriter.h"
#include "formats/Utf8.h"

#include <cmath>
#include <cstdio>

namespace Pegasus::fuzz {
namespace {

std::string printed(const char* format, auto... values) {
    char text[400];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

// ---- plain versions ----

std::string plainOutside(std::string_view text) {
    std::string out;
    for (char c : text) {
        const bool kept = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                          (c >= '0' && c <= '9') ||
                          (c != '\0' && std::strchr(" \n\t:.,-/#_()[]\"'", c));
        if (c == '=')
            out += ": ";
        else
            out += kept ? c : '?';
    }
    return out;
}

// One element at a time, its content by recursion.
std::string plainSafe(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] != '<') {
            out += plainOutside(text.substr(i++, 1));
            continue;
        }
        const std::size_t close = text.find('>', i + 2); // a name is not empty
        if (close == text.npos)
            return out + plainOutside(text.substr(i));
        const std::string closing = "</" + std::string(text.substr(i + 1, close - i - 1));
        std::size_t at = close + 1;
        std::size_t size = 0; // of the closing tag at `at`
        for (; at < text.size() && size == 0; ++at) {
            const std::string_view rest = text.substr(at);
            if (rest.starts_with("</>"))
                size = 3;
            else if (rest.starts_with(closing) && rest.size() > closing.size())
                size = closing.size() + 1;
            if (size != 0)
                break;
        }
        if (size == 0)
            return out + plainOutside(text.substr(i));
        out += text.substr(i, close + 1 - i);
        out += plainSafe(text.substr(close + 1, at - close - 1));
        out += text.substr(at, size);
        i = at + size;
    }
    return out;
}

// The longest valid prefix is kept, then one byte becomes "?".
std::string plainUtf8(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        std::size_t n = 1;
        while (n <= 4 && n <= text.size() && !isUtf8(text.substr(0, n)))
            ++n;
        if (n <= 4 && n <= text.size()) {
            out += text.substr(0, n);
        } else {
            out += '?';
            n = 1;
        }
        text.remove_prefix(n);
    }
    return out;
}

std::string plainKey(std::string_view text) {
    std::string kept;
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\n')
            kept += '_';
        else if (c == '_' || std::strchr("0123456789", c) || (c >= 'a' && c <= 'z') ||
                 (c >= 'A' && c <= 'Z'))
            if (c != '\0')
                kept += c;
    }
    return kept;
}

// ---- claims ----

// What the framework's strings make of it: U+FFFE and U+FFFF are not characters to them.
void requireText(const String& ours, std::string_view plain, std::string_view claim) {
    requireSame(utf8(ours), utf8(mpu::toString(plainUtf8(plain))), claim);
    require(isUtf8(utf8(ours)), "a text is valid UTF-8");
}

void safeTexts(std::string_view text) {
    const String safe =
        text.empty() ? String() // a count of 0 would mean "to the NUL"
                     : Avrel_Event::makeSafeString(text.data(), static_cast<int>(text.size()));
    requireText(safe, plainSafe(text), "makeSafeString");
    requireText(mpu::toString(text), text, "toString");

    // With 0 for a count it ends at the NUL.
    const std::string upToNul(text.substr(0, text.find('\0')));
    requireText(Avrel_Event::makeSafeString(upToNul.c_str(), 0), plainSafe(upToNul),
                "makeSafeString up to the NUL");

    // Once safe, always safe. Not so with bytes that are not text in a tag: becoming "?" they may
    // make two names equal.
    if (std::all_of(text.begin(), text.end(), [](char c) { return c > 0 && c < 127; })) {
        const std::string once = utf8(safe);
        requireText(Avrel_Event::makeSafeString(once.c_str(), 0), once, "makeSafeString twice");
    }
}

// Bodies as decoders write them. Texts made safe one by one, as the writer does it, must give what
// making the whole safe gives.
void bodies(std::string_view text) {
    static constexpr std::string_view kTags[] = {"File", "Text", "Line", "a", "Text_2"};
    mpu::StackWriter<64> safe(mpu::Sanitize::Yes);
    mpu::StackWriter<64> raw(mpu::Sanitize::No);
    for (unsigned i = 0;; ++i) {
        const std::size_t n = std::min(text.size(), std::size_t{1} + i * i % 37);
        const mpu::Untrusted piece(text.substr(0, n));
        for (mpu::TextWriter* out :
             {static_cast<mpu::TextWriter*>(&safe), static_cast<mpu::TextWriter*>(&raw)}) {
            const std::string_view tag = kTags[i % std::size(kTags)];
            if (i % 4 == 3)
                out->untrusted(piece).literal(" ");
            else if (i % 4 == 1)
                out->literal("<Group>")
                    .element(tag, piece, " ")
                    .element("Code", mpu::Untrusted(), "")
                    .literal("</Group>");
            else
                out->element(tag, piece, i % 4 == 0 ? " " : "");
            out->open("Number").decimal(i).literal(", 0x").hexUpper(i * 977u, 8).close("Number");
        }
        text.remove_prefix(n);
        if (text.empty())
            break;
    }
    const std::string_view whole = raw.view();
    const String cleaned =
        Avrel_Event::makeSafeString(whole.data(), static_cast<int>(whole.size()));
    requireSame(utf8(safe.string()), utf8(cleaned), "texts made safe alone or as a whole");
    requireText(raw.string(), whole, "raw texts stay");
}

void dumps(std::string_view text) {
    const long size = static_cast<long>(text.size());
    std::string digits;
    for (char c : text)
        digits += printed("%02X", static_cast<unsigned char>(c));
    std::string groups;
    for (std::size_t at = 0; at < text.size(); at += 16) {
        groups += printed("0x%04x=", static_cast<unsigned>(at));
        groups += digits.substr(2 * at, 16) + " | ";
        groups += (digits.size() > 2 * at + 16 ? digits.substr(2 * at + 16, 16) : "") + ";";
    }
    requireSame(utf8(Avrel_Event::hexifiedString(text.data(), size)), digits, "hexifiedString");
    requireSame(utf8(Avrel_Event::hexifiedStringForBody(text.data(), size)), groups,
                "hexifiedStringForBody");
    const std::unique_ptr<char[]> out(new char[2 * text.size() + 1]);
    Avrel_Event::hexified(out.get(), text.data(), size);
    requireSame(out.get(), digits, "hexified");
}

void names(std::string_view text) {
    const std::string upToNul(text.substr(0, text.find('\0')));
    const std::string plain = plainKey(text);
    std::string key(text);
    if (!text.empty()) {
        Avrel_Event::makeSafeKeyname(key.data(), static_cast<int>(key.size()));
        require(key.starts_with(plain), "makeSafeKeyname keeps");
        require(plain.size() == text.size() || key[plain.size()] == '\0', "makeSafeKeyname ends");
    }
    key = upToNul;
    Avrel_Event::makeSafeKeyname(key.data(), 0);
    const std::string kept = plainKey(upToNul);
    requireSame(key, kept + upToNul.substr(kept.size()), "makeSafeKeyname without a count");

    std::string fixed = upToNul;
    for (std::size_t i = 0; i < fixed.size(); ++i)
        if (const std::string kind = plainKey(fixed.substr(i, 1));
            kind != fixed.substr(i, 1) || (i == 0 && std::strchr("0123456789", fixed[0])))
            fixed[i] = '_';
    requireSame(CMAPMessageHeader::cmapXmlTagNameFix(upToNul.c_str()), fixed, "cmapXmlTagNameFix");

    const std::string element = "<t>" + upToNul + "</t>";
    requireText(Avrel_Event::xmlize("t", upToNul.c_str()), element, "xmlize");
    requireText(Avrel_Event::xmlizeString("t", mpu::toString(upToNul)), element, "xmlizeString");
    requireText(Avrel_Event::xmlizeString(upToNul.c_str(), "v"),
                "<" + plainUtf8(upToNul) + ">v</" + plainUtf8(upToNul) + ">", "xmlizeString's tag");
}

void numbers(std::string_view text) {
    Input input(bytesOf(text));
    const std::uint32_t high = input.word(), low = input.word();
    const unsigned width = input.byte() % 24;
    const unsigned long long both = static_cast<unsigned long long>(high) << 32 | low;
    requireSame(StringFormat::hex(both, width), printed("0x%0*llx", static_cast<int>(width), both),
                "hex");
    requireSame(StringFormat::hex(high, low, width), StringFormat::hex(both, width), "hex halves");
    requireSame(StringFormat::decimal(both), printed("%llu", both), "decimal");
    mpu::StackWriter<64> out;
    out.integer(low).literal(" ").decimal(low).literal(" ").hexUpper(low, width % 9).literal(" ");
    out.hexLower(both, width % 17);
    requireSame(out.view(),
                printed("%d %u %0*X %0*llx", static_cast<int>(low), low,
                        static_cast<int>(width % 9), low, static_cast<int>(width % 17), both),
                "numbers");
    char real[mpu::kFloatRoom];
    const char* end = mpu::putFloat(real, low);
    requireSame({real, static_cast<std::size_t>(end - real)},
                printed("%f", static_cast<double>(std::bit_cast<float>(low))), "%f");
}

void entries(std::string_view text) {
    const std::string value(text.substr(0, text.find('\0')));
    const auto mended = [](std::string s) {
        if (s.ends_with('\\') && !s.ends_with("\\\\"))
            s.back() = '.';
        return s;
    };
    std::string tag = value.substr(0, value.size() % 7);
    AvrelEvent event(nullptr, 0);
    char format[] = "%s";
    std::string given = tag;
    event.addEntry(given.data(), format, value.c_str());
    tag = mended(tag);
    requireSame(given, tag, "addEntry mends the caller's tag");
    std::string raw = value;
    event.appendBody(raw.data());
    // Each run of characters becomes text on its own.
    const std::string entry = "<" + tag + ">" + mended(value) + "</" + tag + ">";
    requireSame(utf8(event.getBody()),
                utf8(mpu::toString(plainUtf8(entry))) + utf8(mpu::toString(plainUtf8(value))),
                "entries");
}

// Character by character what the formats find in blocks.
void escapes(std::string_view text) {
    std::string json = "\"";
    std::string xml;
    std::string seen;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto code = static_cast<unsigned>(static_cast<unsigned char>(c));
        const char* const letter = c ? std::strchr("\bb\tt\nn\ff\rr\"\"\\\\", c) : nullptr;
        json += letter && (code < ' ' || c == '"' || c == '\\') ? std::string("\\") + letter[1]
                : code < ' '                                    ? printed("\\u%04X", code)
                                                                : std::string(1, c);
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto code = static_cast<unsigned>(static_cast<unsigned char>(c));
        seen +=
            c == '\n'                                   ? "\\n"
            : c == '\r'                                 ? "\\r"
            : (code < ' ' && c != '\t') || code == 0x7F ? printed("\\x%02X", code)
            : c == '\xC2' && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0
                ? printed("\\u%04X", static_cast<unsigned>(static_cast<unsigned char>(text[++i])))
                : std::string(1, c);
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const std::string_view rest = text.substr(i);
        const bool isNone = rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF");
        xml +=
            isNone || (static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r')
                ? "\xEF\xBF\xBD"
            : c == '<'  ? "&lt;"
            : c == '>'  ? "&gt;"
            : c == '&'  ? "&amp;"
            : c == '"'  ? "&quot;"
            : c == '\'' ? "&#39;"
            : c == '\r' ? "&#13;"
                        : std::string(1, c);
        i += isNone ? 2 : 0;
    }
    mpu::LineWriter out;
    formats::putJson(out, text);
    requireSame(out.view(), json + '"', "JSON");
    out.clear();
    formats::putXml(out, text);
    requireSame(out.view(), xml, "XML");
    out.clear();
    formats::putPrintable(out, text);
    requireSame(out.view(), seen, "printable text");
}

void text(Bytes bytes) {
    const std::string_view all = characters(bytes);
    safeTexts(all);
    bodies(all);
    dumps(all);
    names(all);
    numbers(all);
    entries(all);
    escapes(all);
}

} // namespace
} // namespace Pegasus::fuzz

using Pegasus::fuzz::text;
MPUEVENT_FUZZ_TARGET(text)

#ifdef MPUEVENT_LIBFUZZER
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Markup is what matters, and blind changes of bytes seldom make any.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    static constexpr std::string_view kPieces[] = {
        "<",      ">",        "</",      "</>",      "<a>",          "</a>",
        "<a><b>", "</b></a>", "=",       "\xC3\xA9", "\xED\xA0\x80", "<>x>",
        "</>x>",  "\\",       "<t a=1>", "</t a=1>", "</Text>",      "</F"};
    const std::string_view piece = kPieces[seed / 3 % std::size(kPieces)];
    if (seed % 3 == 0 || size + piece.size() > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::size_t at = seed / 97 % (size + 1);
    std::memmove(data + at + piece.size(), data + at, size - at);
    std::memcpy(data + at, piece.data(), piece.size());
    return size + piece.size();
}
#endif
