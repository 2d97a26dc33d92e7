// What tests need to make records, decode them and look at the result.
#pragma once

#include "event/MPUEvent.h"
#include "event/RecordView.h"
#include "platform/trace/ProviderTraceServices.h"

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Pegasus::test {

// All of the text, NULs included.
inline std::string utf8(const String& text) {
    std::string out;
    for (Uint32 at = 0;;) {
        const Uint32 nul = text.find(at, Char16(Uint16(0)));
        const Uint32 count = nul == PEG_NOT_FOUND ? PEG_NOT_FOUND : nul - at;
        out += static_cast<const char*>(text.subString(at, count).getCString());
        if (nul == PEG_NOT_FOUND)
            return out;
        out.push_back('\0');
        at = nul + 1;
    }
}

// A record by the names of its fields. Offsets are from the start of the payload, which grows to
// hold what is written; evStructLength is the payload's size unless payloadLength() says otherwise.
//
//     auto event = RecordBuilder(23, 101).severity(3).u32(0, 7).text(4, "disk0").decode();
//
class RecordBuilder {
public:
    RecordBuilder(unsigned source, unsigned eventId) : header_(sizeof(EmpEvLogMsg_s)) {
        fields().source = static_cast<std::uint8_t>(source);
        fields().eventId = static_cast<std::uint16_t>(eventId);
        severity(1).category(1).enclosure("ENC-1").controller("CTL-1");
    }

    RecordBuilder& severity(unsigned v) { // header byte 147
        fields().eventType = static_cast<std::uint8_t>(v);
        return *this;
    }
    RecordBuilder& category(unsigned v) {
        fields().category = static_cast<std::uint8_t>(v);
        return *this;
    }
    RecordBuilder& version(unsigned v) { // of the payload's layout
        fields().payloadVersion = static_cast<std::uint8_t>(v);
        return *this;
    }
    RecordBuilder& slot(std::uint32_t v) {
        fields().slotId = v;
        return *this;
    }
    RecordBuilder& instance(std::uint32_t v) {
        fields().logInstance = v;
        return *this;
    }
    RecordBuilder& sequence(std::uint32_t v) {
        fields().sequenceId = v;
        return *this;
    }
    RecordBuilder& timestamp(std::uint32_t v) {
        fields().timestamp = v;
        return *this;
    }
    // Serial numbers: cut to their 64 bytes, filled up with NULs.
    RecordBuilder& enclosure(std::string_view text) {
        return serial(fields().enclosureSerialNumber, text);
    }
    RecordBuilder& controller(std::string_view text) {
        return serial(fields().controllerSerialNumber, text);
    }
    RecordBuilder& payloadLength(unsigned v) {
        claimed_ = static_cast<int>(v);
        return *this;
    }

    RecordBuilder& u8(std::size_t at, std::uint8_t v) { return number(at, v); }
    RecordBuilder& u16(std::size_t at, std::uint16_t v) { return number(at, v); }
    RecordBuilder& u32(std::size_t at, std::uint32_t v) { return number(at, v); }
    RecordBuilder& u64(std::size_t at, std::uint64_t v) { return number(at, v); }
    RecordBuilder& u32s(std::size_t at, std::initializer_list<std::uint32_t> run) {
        for (std::uint32_t v : run)
            u32(at, v), at += 4;
        return *this;
    }
    RecordBuilder& bytes(std::size_t at, std::string_view run) {
        if (payload_.size() < at + run.size())
            payload_.resize(at + run.size());
        std::copy(run.begin(), run.end(), payload_.begin() + static_cast<std::ptrdiff_t>(at));
        return *this;
    }
    // The text and its NUL.
    RecordBuilder& text(std::size_t at, std::string_view text) {
        return bytes(at, std::string(text) + '\0');
    }

    // `n` bytes, each the low byte of its distance from `at`, so that the word at 8 is 0x08090A0B.
    RecordBuilder& counted(std::size_t at, unsigned n) {
        for (unsigned i = 0; i < n; ++i)
            u8(at + i, static_cast<std::uint8_t>(i));
        return *this;
    }
    // `n` words that count from `first`.
    RecordBuilder& words(std::size_t at, unsigned n, std::uint32_t first = 1) {
        for (unsigned i = 0; i < n; ++i)
            u32(at + 4 * i, first + i);
        return *this;
    }

    std::vector<unsigned char> record() const {
        std::vector<unsigned char> all = header_;
        mpu::storeBig(&all[offsetof(EmpEvLogMsg_s, evStructLength)],
                      claimed_ >= 0 ? static_cast<std::uint16_t>(claimed_)
                                    : static_cast<std::uint16_t>(payload_.size()));
        all.insert(all.end(), payload_.begin(), payload_.end());
        return all;
    }
    // The record after a message header that announces its real length.
    std::vector<unsigned char> message() const {
        const std::vector<unsigned char> body = record();
        std::vector<unsigned char> all(mpu::message_header::kSize);
        mpu::storeBig(&all[mpu::message_header::kLength],
                      static_cast<std::uint16_t>(all.size() + body.size()));
        all.insert(all.end(), body.begin(), body.end());
        return all;
    }
    std::unique_ptr<Avrel_Event> decode() const {
        const std::vector<unsigned char> all = message();
        Avrel_memory_istream in(all.data() + mpu::message_header::kSize,
                                all.size() - mpu::message_header::kSize);
        const MPUEvent carrier(CMAPMessageHeader(static_cast<const void*>(all.data())), in);
        return std::unique_ptr<Avrel_Event>(carrier.create_Avrel_Event());
    }
    // Texts of the decoded event.
    std::string title() const { return utf8(decode()->getEventID()); }
    std::string summary() const { return utf8(decode()->getSummary()); }
    std::string body() const { return utf8(decode()->getBody()); }

private:
    EmpEvLogMsg_s& fields() { return *reinterpret_cast<EmpEvLogMsg_s*>(header_.data()); }
    RecordBuilder& serial(char (&field)[64], std::string_view text) {
        std::memset(field, 0, sizeof field);
        std::memcpy(field, text.data(), std::min(text.size(), sizeof field));
        return *this;
    }
    template <class T>
    RecordBuilder& number(std::size_t at, T v) {
        char wire[sizeof v];
        mpu::storeBig(wire, v);
        return bytes(at, {wire, sizeof wire});
    }

    std::vector<unsigned char> header_;
    std::vector<unsigned char> payload_;
    int claimed_ = -1; // evStructLength if not the payload's size
};

// No trace lines while this lives.
class SuppressTrace {
public:
    SuppressTrace() : before_(ProviderTraceServices::ptsGetTraceSuppressForPid()) {
        ProviderTraceServices::ptsSetTraceSuppressForPid(1);
    }
    ~SuppressTrace() { ProviderTraceServices::ptsSetTraceSuppressForPid(before_); }
    SuppressTrace(const SuppressTrace&) = delete;
    SuppressTrace& operator=(const SuppressTrace&) = delete;

private:
    int before_;
};

// Collects the trace lines written while this lives, suppressed before or not. In a file: the
// thread sanitizer does not see the lock under which a stream in memory grows.
class CaptureTrace {
public:
    CaptureTrace()
        : before_(ProviderTraceServices::ptsGetTraceSuppressForPid()), stream_(std::tmpfile()) {
        ProviderTraceServices::ptsSetTraceSuppressForPid(0);
        ProviderTraceServices::ptsSetTraceStream(stream_);
    }
    ~CaptureTrace() {
        ProviderTraceServices::ptsSetTraceStream(nullptr);
        ProviderTraceServices::ptsSetTraceSuppressForPid(before_);
        std::fclose(stream_);
    }
    CaptureTrace(const CaptureTrace&) = delete;
    CaptureTrace& operator=(const CaptureTrace&) = delete;

    // So far, each without time stamp, process and line feed:
    // "Avrel_Event:176               :----: Avrel_Event::source...".
    std::vector<std::string> lines() const {
        constexpr std::size_t stamp = 25; // "Thu Jan  1 00:00:00 1970 "
        std::string text(static_cast<std::size_t>(std::ftell(stream_)), '\0');
        std::rewind(stream_);
        text.resize(std::fread(text.data(), 1, text.size(), stream_));
        std::fseek(stream_, 0, SEEK_END);
        std::vector<std::string> all;
        std::string_view rest(text);
        while (!rest.empty()) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            all.emplace_back(line.substr(std::min(line.find(' ', stamp) + 1, line.size())));
        }
        return all;
    }

private:
    int before_;
    std::FILE* stream_;
};

} // namespace Pegasus::test
