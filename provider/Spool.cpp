#include "provider/Spool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <string_view>
#include <unistd.h>

namespace Pegasus::provider {

namespace {

bool isCapture(std::string_view name) {
    constexpr std::string_view compressed[] = {".gz", ".bz2", ".xz", ".zst", ".lz4", ".zip"};
    return name.front() != '.' && std::none_of(std::begin(compressed), std::end(compressed),
                                               [name](auto end) { return name.ends_with(end); });
}

bool olderThan(const struct stat& a, const struct stat& b) {
    return a.st_mtim.tv_sec != b.st_mtim.tv_sec ? a.st_mtim.tv_sec < b.st_mtim.tv_sec
                                                : a.st_mtim.tv_nsec < b.st_mtim.tv_nsec;
}

} // namespace

Spool::Spool(std::string path, capture::Framing framing, capture::FaultHandler onFault)
    : path_(std::move(path)), onFault_(std::move(onFault)),
      capture_(framing,
               [this](const capture::Damage& damage) { log(*current_ + ": " + damage.str()); }) {}

void Spool::poll(const Visitor& visitor) {
    reports_ = 0;
    std::vector<Found> found;
    const bool listed = list(found);
    if (listed)
        update(found);
    for (File& file : files_) {
        current_ = &file.path;
        const int error = file.file->poll(
            capture_,
            [&](const capture::Message& message) {
                visitor(message.record);
                return true;
            },
            !file.there);
        if (error != 0)
            log(fmt::format("{}: {}", file.path, std::strerror(error)));
    }
    std::erase_if(files_, [](const File& file) { return !file.there; });
    if (reports_ > kMaxReports)
        onFault_(fmt::format("{}: {} more faults", path_, reports_ - kMaxReports));
}

// The regular files, oldest first. False, and said once, when the spool can't be looked at: what is
// open is read on then.
bool Spool::list(std::vector<Found>& found) {
    std::string error;
    struct stat status;
    if (::stat(path_.c_str(), &status) != 0) {
        error = std::strerror(errno);
    } else if (S_ISREG(status.st_mode)) {
        found.push_back({path_, status});
    } else if (DIR* directory = ::opendir(path_.c_str()); directory == nullptr) {
        error = std::strerror(errno);
    } else {
        while (const dirent* entry = ::readdir(directory)) { // NOLINT(concurrency-mt-unsafe)
            if (!isCapture(entry->d_name))
                continue;
            std::string path = path_ + "/" + entry->d_name;
            if (::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
                found.push_back({std::move(path), status});
        }
        ::closedir(directory);
        std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
            return olderThan(a.status, b.status) ||
                   (!olderThan(b.status, a.status) && a.path < b.path);
        });
        if (found.size() > kMaxFiles) {
            error = fmt::format("more than {} files, the oldest are passed over", kMaxFiles);
            found.erase(found.begin(), found.end() - kMaxFiles);
        }
    }
    if (error != lastError_ && !error.empty())
        log(fmt::format("{}: {}", path_, error));
    lastError_ = error;
    return !found.empty() || error.empty();
}

void Spool::update(const std::vector<Found>& found) {
    for (File& file : files_)
        file.there = false;
    for (const Found& now : found) {
        const auto known = std::find_if(files_.begin(), files_.end(), [&](const File& file) {
            return file.file->is(now.status);
        });
        if (known != files_.end()) {
            known->there = true;
            known->path = now.path;
            continue;
        }
        const int descriptor = ::open(now.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (descriptor >= 0)
            files_.push_back({now.path, std::make_unique<capture::Tail>(descriptor)});
        else if (errno != ENOENT)
            log(fmt::format("{}: {}", now.path, std::strerror(errno)));
    }
}

void Spool::log(const std::string& what) {
    if (++reports_ <= kMaxReports)
        onFault_(what);
}

} // namespace Pegasus::provider
