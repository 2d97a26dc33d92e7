#include "platform/trace/ProviderTraceServices.h"

#include <atomic>
#include <ctime>
#include <unistd.h>

namespace Pegasus {

namespace {

constinit std::atomic<int> suppressed{0};
constinit std::atomic<std::FILE*> traceStream{nullptr};

} // namespace

int ProviderTraceServices::ptsGetTraceSuppressForPid() {
    return suppressed.load(std::memory_order_relaxed);
}

void ProviderTraceServices::ptsSetTraceSuppressForPid(int suppress) {
    suppressed.store(suppress, std::memory_order_relaxed);
}

void ProviderTraceServices::ptsSetTraceStream(std::FILE* stream) {
    traceStream.store(stream);
}

std::string ProviderTraceServices::ptsGetTimeStampString() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    char text[64] = "";
    if (localtime_r(&now, &local))
        (void)asctime_r(&local, text);
    std::string stamp(text);
    if (!stamp.empty() && stamp.back() == '\n')
        stamp.pop_back();
    return stamp;
}

std::string ProviderTraceServices::ptsGetPidString() {
    return std::to_string(getpid());
}

std::string ProviderTraceServices::ptsGetFileLineString(const char* source, int line,
                                                        unsigned int width) {
    std::string text(source);
    text.append(":").append(std::to_string(line));
    if (text.size() < width)
        text.resize(width, ' ');
    return text;
}

std::string ProviderTraceServices::ptsGetIndentString() {
    return {};
}

void ProviderTraceServices::ptsTrace(const char* source, int line,
                                     std::initializer_list<std::string_view> message) {
    if (ptsGetTraceSuppressForPid() != 0)
        return;
    std::string text = ptsGetTimeStampString();
    text.append(" ").append(ptsGetPidString()).append(" ");
    text.append(ptsGetFileLineString(source, line, 30)).append(":----: ");
    text.append(ptsGetIndentString());
    for (std::string_view part : message)
        text.append(part);
    text.push_back('\n');
    // One call per line: the stream's own lock keeps lines of several threads apart.
    std::FILE* stream = traceStream.load();
    if (!stream)
        stream = stdout;
    (void)std::fwrite(text.data(), 1, text.size(), stream);
    (void)std::fflush(stream);
}

} // namespace Pegasus
