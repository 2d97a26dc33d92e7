// mpuevent follow: the events of a capture as it grows.
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Events.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Pegasus::tool {

namespace {

constexpr int kInterval = 200; // ms between looks at a file that did not grow

volatile std::sig_atomic_t interrupted = 0;

// From now on SIGINT and SIGTERM end the following; a second one ends the command as it would any
// other, should the reader of its output keep it waiting.
void catchSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Whether to go on after so much time. A reader of `output` who goes ends it as a signal does.
bool wait(int output, int milliseconds) {
    pollfd reader{output, 0, 0};
    const int found = ::poll(&reader, 1, milliseconds);
    return interrupted == 0 && !(found > 0 && (reader.revents & (POLLERR | POLLNVAL)));
}

// The bytes of a file that grows. Ends when the file was made shorter or another one took its
// place, and when the waiting is over.
class GrowingFile : public ByteSource {
public:
    GrowingFile(const std::string& path, Output& output) : path_(path), output_(output) {}
    ~GrowingFile() override { close(); }
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

    // The errno of a failure.
    int open() {
        close();
        descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (descriptor_ < 0 || ::fstat(descriptor_, &opened_) != 0)
            return errno;
        position_ = 0;
        replaced_ = false;
        return S_ISDIR(opened_.st_mode) ? EISDIR : S_ISREG(opened_.st_mode) ? 0 : EINVAL;
    }

    std::size_t read(std::uint8_t* to, std::size_t room) override {
        for (;;) {
            const ssize_t got = ::read(descriptor_, to, room);
            if (got > 0) {
                position_ += got;
                if (wait(output_.descriptor(), 0)) // long files must not keep a signal waiting
                    return static_cast<std::size_t>(got);
                return end(ECANCELED);
            }
            if (got < 0 && errno != EINTR)
                return end(errno);
            if (replaced_ || isShorter())
                return 0;
            replaced_ = isReplaced(); // then it may have grown since we looked, for the last time
            if (!replaced_ && (!output_.flush() || !wait(output_.descriptor(), kInterval)))
                return end(ECANCELED);
        }
    }
    int failure() const override { return failure_; }

private:
    std::size_t end(int failure) {
        failure_ = failure;
        return 0;
    }
    bool isShorter() const {
        struct stat now;
        return ::fstat(descriptor_, &now) == 0 && now.st_size < position_;
    }
    // While a rotation goes on there may be nothing at all.
    bool isReplaced() const {
        struct stat now;
        return ::stat(path_.c_str(), &now) == 0 && S_ISREG(now.st_mode) &&
               (now.st_dev != opened_.st_dev || now.st_ino != opened_.st_ino);
    }
    void close() {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }

    const std::string& path_;
    Output& output_;
    int descriptor_ = -1;
    struct stat opened_ {};
    off_t position_ = 0;
    int failure_ = 0; // ECANCELED: the following is over
    bool replaced_ = false;
};

struct Options {
    std::string file;
    InputKind input;
    EventOptions events;
};

Status follow(const Options& options) {
    if (!options.events.prepare())
        return kUsage;
    catchSignals();
    Output output;
    EventWriter writer(options.events, output);
    GrowingFile file(options.file, output);
    const auto fail = [&](const char* what) {
        writer.complaint(kFailed, fmt::format("{}: {}", options.file, what));
    };
    bool started = false;
    for (bool more = true; more;) {
        const int error = file.open();
        if (error == ENOENT && started) { // replaced once more
            more = wait(output.descriptor(), kInterval);
            continue;
        }
        started = true;
        if (error != 0) {
            fail(error == EINVAL ? "not a regular file; mpuevent decode reads it"
                                 : std::strerror(error));
            break;
        }
        more = options.input.read(options.file, file, writer).more && file.failure() == 0;
        if (file.failure() != 0 && file.failure() != ECANCELED)
            fail(std::strerror(file.failure()));
    }
    return writer.finish();
}

} // namespace

Runner addFollow(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    app.add_option("file", options->file, "The capture")->type_name("FILE")->required();
    options->input.addOption(app);
    options->events.addOptions(app);
    return [options] { return follow(*options); };
}

} // namespace Pegasus::tool
