#include "formats/Packed.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>

#ifdef MPUEVENT_GZIP
#define ZLIB_CONST
#include <zlib.h>
#endif

namespace Pegasus::formats {

namespace {

#ifdef MPUEVENT_GZIP
constexpr std::string_view kType = "application/gzip";

std::string packed(std::string_view bytes) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) !=
        Z_OK)
        throw std::bad_alloc();
    std::string made(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(made.data());
    stream.avail_out = static_cast<uInt>(made.size());
    deflate(&stream, Z_FINISH); // there is room for all of it
    made.resize(stream.total_out);
    deflateEnd(&stream);
    return made;
}
#else
constexpr std::string_view kType = "application/octet-stream";

std::string_view packed(std::string_view bytes) {
    return bytes;
}
#endif

} // namespace

void putBase64(mpu::TextWriter& out, std::string_view bytes) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    char* to = out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? static_cast<std::uint8_t>(bytes[at + i]) : 0u);
        for (std::size_t i = 0; i < 4; ++i)
            *to++ = i <= count ? kDigits[group >> (18 - 6 * i) & 63] : '=';
    }
    out.commit(to);
}

void putPacked(mpu::TextWriter& out, std::string_view what, std::string_view bytes) {
    out.literal("<script type=\"").literal(kType).literal("\" data-holds=\"").literal(what);
    putBase64(out.literal("\">"), packed(bytes));
    out.literal("</script>\n");
}

} // namespace Pegasus::formats
