#include "capture/Compressed.h"

#include <algorithm>
#include <fmt/format.h>
#include <new>

#ifdef MPUEVENT_GZIP
#define ZLIB_CONST
#include <zlib.h>
#endif
#ifdef MPUEVENT_XZ
#include <lzma.h>
#endif
#ifdef MPUEVENT_ZSTD
#include <zstd.h>
#endif

namespace Pegasus::capture {

namespace {

constexpr std::uint64_t kMaxMemory = std::uint64_t{128} << 20;
static_assert(kMaxMemory == std::uint64_t{1} << 27); // zstd's default limit, too

// What the libraries have in common: feed them what is there, hand on what comes out.
class Unpacker : public ByteSource {
public:
    Unpacker(ByteSource& packed, FaultHandler report)
        : packed_(packed), report_(std::move(report)) {}

    std::size_t read(std::uint8_t* to, std::size_t room) override {
        while (!over_ && room != 0) {
            Step step{{buffer_.data() + taken_, size_ - taken_}, to, room, ended_, 0, 0, {}};
            advance(step);
            taken_ += step.taken;
            if (!step.fault.empty()) {
                over_ = true;
                if (packed_.failure() == 0)
                    report_(fmt::format("compressed data, offset {}: {}", offset_ + taken_,
                                        step.fault));
            }
            if (step.made != 0)
                return step.made;
            if (over_ || step.taken != 0)
                continue;
            if (ended_)
                break;
            offset_ += size_;
            taken_ = 0;
            size_ = packed_.read(buffer_.data(), buffer_.size());
            if (size_ == 0 && packed_.growing())
                break;
            ended_ = size_ == 0;
        }
        return 0;
    }
    bool ready() override { return packed_.ready(); }
    int failure() const override { return packed_.failure(); }
    bool growing() const override { return packed_.growing(); }

protected:
    struct Step {
        std::span<const std::uint8_t> input;
        std::uint8_t* output;
        std::size_t room;
        bool last; // there is no more input
        std::size_t taken;
        std::size_t made;
        std::string fault; // ends it
    };
    // Takes some of the input, or makes some output, or fails; nothing only when it needs more
    // input.
    virtual void advance(Step& step) = 0;

    [[maybe_unused]] static constexpr const char* kCut = "the input ends too early";

private:
    ByteSource& packed_;
    FaultHandler report_;
    std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(std::size_t{64} * 1024);
    std::size_t size_ = 0;
    std::size_t taken_ = 0;
    std::uint64_t offset_ = 0; // of the buffer in the packed data
    bool ended_ = false;
    bool over_ = false;
};

#ifdef MPUEVENT_GZIP
// Members one after another, as gzip(1) takes them; zeros may follow the last one.
class GzipSource : public Unpacker {
public:
    GzipSource(ByteSource& packed, FaultHandler report) : Unpacker(packed, std::move(report)) {
        if (inflateInit2(&stream_, 15 + 16) != Z_OK)
            throw std::bad_alloc();
    }
    ~GzipSource() override { inflateEnd(&stream_); }
    GzipSource(const GzipSource&) = delete;
    GzipSource& operator=(const GzipSource&) = delete;

private:
    void advance(Step& step) override {
        if (between_) {
            while (step.taken < step.input.size() && step.input[step.taken] == 0)
                ++step.taken;
            if (step.taken == step.input.size())
                return;
            inflateReset(&stream_);
            between_ = false;
        }
        stream_.next_in = step.input.data() + step.taken;
        stream_.avail_in = static_cast<uInt>(step.input.size() - step.taken);
        stream_.next_out = step.output;
        stream_.avail_out = static_cast<uInt>(std::min<std::size_t>(step.room, 1u << 30));
        const int result = inflate(&stream_, Z_NO_FLUSH);
        step.taken = step.input.size() - stream_.avail_in;
        step.made = static_cast<std::size_t>(stream_.next_out - step.output);
        if (result == Z_STREAM_END)
            between_ = true;
        else if (result == Z_BUF_ERROR && step.last)
            step.fault = kCut;
        else if (result == Z_MEM_ERROR)
            throw std::bad_alloc();
        else if (result != Z_OK && result != Z_BUF_ERROR)
            step.fault = stream_.msg ? stream_.msg : "corrupt";
    }

    z_stream stream_{};
    bool between_ = false; // members
};
#endif

#ifdef MPUEVENT_XZ
class XzSource : public Unpacker {
public:
    XzSource(ByteSource& packed, FaultHandler report) : Unpacker(packed, std::move(report)) {
        if (lzma_stream_decoder(&stream_, kMaxMemory + (std::uint64_t{1} << 20),
                                LZMA_CONCATENATED) != LZMA_OK)
            throw std::bad_alloc();
    }
    ~XzSource() override { lzma_end(&stream_); }
    XzSource(const XzSource&) = delete;
    XzSource& operator=(const XzSource&) = delete;

private:
    void advance(Step& step) override {
        if (done_)
            return;
        stream_.next_in = step.input.data();
        stream_.avail_in = step.input.size();
        stream_.next_out = step.output;
        stream_.avail_out = step.room;
        const lzma_ret result = lzma_code(&stream_, step.last ? LZMA_FINISH : LZMA_RUN);
        step.taken = step.input.size() - stream_.avail_in;
        step.made = step.room - stream_.avail_out;
        switch (result) {
        case LZMA_OK:
            break;
        case LZMA_STREAM_END:
            done_ = true;
            break;
        case LZMA_BUF_ERROR:
            step.fault = step.last ? kCut : "";
            break;
        case LZMA_MEMLIMIT_ERROR:
            step.fault = fmt::format("unpacking takes {} MiB of memory ({} allowed)",
                                     lzma_memusage(&stream_) >> 20, kMaxMemory >> 20);
            break;
        case LZMA_MEM_ERROR:
            throw std::bad_alloc();
        case LZMA_FORMAT_ERROR:
            step.fault = "no xz data";
            break;
        default:
            step.fault = "corrupt";
        }
    }

    lzma_stream stream_ = LZMA_STREAM_INIT;
    bool done_ = false;
};
#endif

#ifdef MPUEVENT_ZSTD
class ZstdSource : public Unpacker {
public:
    ZstdSource(ByteSource& packed, FaultHandler report)
        : Unpacker(packed, std::move(report)), stream_(ZSTD_createDStream()) {
        if (!stream_)
            throw std::bad_alloc();
        first_ = wanted_ = ZSTD_initDStream(stream_.get());
    }

private:
    void advance(Step& step) override {
        // No more than the library asks for: it keeps to itself what it has decoded of a piece with
        // a fault, and does not tell where in it that is.
        ZSTD_inBuffer in{step.input.data(), std::min(step.input.size(), wanted_), 0};
        ZSTD_outBuffer out{step.output, step.room, 0};
        if (in.size != 0 || open_) {
            const std::size_t result = ZSTD_decompressStream(stream_.get(), &out, &in);
            if (ZSTD_isError(result)) {
                step.fault = ZSTD_getErrorName(result);
                in.pos = in.size;
            }
            open_ = result != 0;
            wanted_ = open_ ? result : first_;
        }
        step.taken = in.pos;
        step.made = out.pos;
        if (step.fault.empty() && step.last && open_ && out.pos == 0)
            step.fault = kCut;
    }

    struct Free {
        void operator()(ZSTD_DStream* stream) const { ZSTD_freeDStream(stream); }
    };
    std::unique_ptr<ZSTD_DStream, Free> stream_;
    std::size_t first_; // bytes that a frame begins with
    std::size_t wanted_;
    bool open_ = false; // a frame
};
#endif

} // namespace

std::unique_ptr<ByteSource> unpack(Compression compression, [[maybe_unused]] ByteSource& packed,
                                   [[maybe_unused]] FaultHandler report) {
    switch (compression) {
    case Compression::Gzip:
#ifdef MPUEVENT_GZIP
        return std::make_unique<GzipSource>(packed, std::move(report));
#else
        break;
#endif
    case Compression::Xz:
#ifdef MPUEVENT_XZ
        return std::make_unique<XzSource>(packed, std::move(report));
#else
        break;
#endif
    case Compression::Zstd:
#ifdef MPUEVENT_ZSTD
        return std::make_unique<ZstdSource>(packed, std::move(report));
#else
        break;
#endif
    }
    return nullptr;
}

} // namespace Pegasus::capture
