#include "tools/mpuevent/Output.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Pegasus::tool {

namespace {

// 0, or the errno of the failure.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t done = ::write(descriptor, bytes.data(), bytes.size());
        if (done > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(done));
        } else if (done == 0) {
            return EIO;
        } else if (errno == EAGAIN) { // somebody else's setting of a shared terminal or pipe
            pollfd ready{descriptor, POLLOUT, 0};
            (void)::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

bool progressShown = false;

} // namespace

void showProgress(std::string_view message) {
    (void)writeAll(2, fmt::format("\r\x1B[Kmpuevent: {}", message));
    progressShown = true;
}

void hideProgress() {
    if (std::exchange(progressShown, false))
        (void)writeAll(2, "\r\x1B[K");
}

void complain(std::string_view message) {
    hideProgress();
    (void)writeAll(2, fmt::format("mpuevent: {}\n", message));
}

int replaceFile(const std::string& path, std::string_view text) {
    const std::string fresh = path + ".new";
    const int descriptor = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return errno;
    int error = writeAll(descriptor, text);
    if (error == 0 && ::fsync(descriptor) != 0)
        error = errno;
    if (::close(descriptor) != 0 && error == 0)
        error = errno;
    return error == 0 && ::rename(fresh.c_str(), path.c_str()) != 0 ? errno : error;
}

Output::~Output() {
    if (descriptor_ > 2)
        ::close(descriptor_);
    if (!fresh_.empty()) // not finished
        (void)::unlink(fresh_.c_str());
}

bool Output::open(const std::string& path) {
    if (path == "-")
        return true;
    constexpr int kHow = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    name_ = path;
    // A link stays, and what it leads to is replaced; devices and pipes are written to.
    std::error_code none;
    const std::string target = std::filesystem::weakly_canonical(path, none).string();
    struct stat old;
    const bool exists = ::stat(path.c_str(), &old) == 0;
    if (!none && (!exists || (S_ISREG(old.st_mode) && ::access(path.c_str(), W_OK) == 0))) {
        fresh_ = target + ".new-XXXXXX";
        descriptor_ = ::mkostemp(fresh_.data(), O_CLOEXEC);
        if (descriptor_ >= 0) {
            target_ = target;
            const ::mode_t mask = ::umask(0);
            (void)::umask(mask);
            (void)::fchmod(descriptor_, exists ? old.st_mode & 07777 : 0666 & ~mask);
            return true;
        }
        fresh_.clear(); // the file may be writable, and the folder not
    }
    descriptor_ = ::open(path.c_str(), kHow, 0666);
    return descriptor_ >= 0 || fail(errno);
}

bool Output::flush() {
    const bool more = put(text_.view());
    text_.clear();
    return more;
}

bool Output::write(std::string_view bytes) {
    return flush() && put(bytes);
}

bool Output::coloured() const {
    const char* const never = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return (!never || !*never) && terminal && std::string_view(terminal) != "dumb" && isTerminal();
}

bool Output::isTerminal() const {
    return ::isatty(descriptor_) != 0;
}

bool Output::takesBinary(const char* command) const {
    if (isTerminal())
        complain("{} writes binary data, which is not for a terminal; see --output", command);
    return !isTerminal();
}

bool Output::put(std::string_view bytes) {
    if (ended_ || bytes.empty())
        return !ended_;
    struct stat written;
    if (::fstat(descriptor_, &written) != 0 || !S_ISREG(written.st_mode))
        hideProgress(); // these bytes may get to the terminal
    const int error = writeAll(descriptor_, bytes);
    return error == 0 || fail(error);
}

Status Output::finish(Status reading) {
    flush();
    const int descriptor = std::exchange(descriptor_, -1);
    if (descriptor >= 0 && ::close(descriptor) != 0 && !ended_ && errno != EINTR)
        fail(errno);
    replace(reading);
    ended_ = true;
    return status_;
}

void Output::replace(Status reading) {
    if (fresh_.empty())
        return;
    const std::string fresh = std::exchange(fresh_, {});
    if (status_ != kFine) {
        (void)::unlink(fresh.c_str());
    } else if (reading > kDamaged && ::access(target_.c_str(), F_OK) == 0) {
        complain("{} stays as it was; what could be written is {}", name_, fresh);
    } else if (::rename(fresh.c_str(), target_.c_str()) != 0) {
        fail(errno);
    }
}

bool Output::fail(int error) {
    ended_ = true;
    if (error != EPIPE) {
        status_ = kFailed;
        complain("{}: {}", name_, std::strerror(error));
    }
    return false;
}

} // namespace Pegasus::tool
