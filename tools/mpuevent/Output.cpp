#include "tools/mpuevent/Output.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
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
}

bool Output::open(const std::string& path) {
    if (path == "-")
        return true;
    name_ = path;
    descriptor_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
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

Status Output::finish() {
    flush();
    const int descriptor = std::exchange(descriptor_, -1);
    if (descriptor >= 0 && ::close(descriptor) != 0 && !ended_ && errno != EINTR)
        fail(errno);
    ended_ = true;
    return status_;
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
