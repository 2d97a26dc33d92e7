#include "tools/mpuevent/Inputs.h"

#include "capture/Recognise.h"
#include "tools/mpuevent/Numbers.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Pegasus::tool {

namespace {

struct Input {
    const char* name;
    InputHints hints;
};
constexpr Input kInputs[] = {
    {"auto", {}},
    {"cmap", {Framing::Message, false}},
    {"record", {Framing::Record, false}},
    {"hex", {Framing::Message, true}},
    {"hex-record", {Framing::Record, true}},
};

class File {
public:
    explicit File(const std::string& path)
        : descriptor_(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~File() {
        if (descriptor_ > STDIN_FILENO)
            ::close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int descriptor() const { return descriptor_; }
    // 0 for what has none.
    std::uint64_t size() const {
        struct stat found;
        return ::fstat(descriptor_, &found) == 0 && S_ISREG(found.st_mode)
                   ? static_cast<std::uint64_t>(found.st_size)
                   : 0;
    }

private:
    int descriptor_;
};

// How far the reading is, on standard error when that is a terminal and it takes its time.
class Progress {
public:
    ~Progress() { hideProgress(); }
    void open(const std::string& name, std::uint64_t size) {
        name_ = name;
        size_ = size;
    }
    void at(std::uint64_t position) {
        if (!shown_)
            return;
        const Clock::time_point now = Clock::now();
        if (now < next_)
            return;
        next_ = now + std::chrono::milliseconds(200);
        const double mega = static_cast<double>(position) / 1e6;
        showProgress(size_ == 0
                         ? fmt::format("{}: {:.1f} MB", name_, mega)
                         : fmt::format("{}: {:.1f} of {:.1f} MB, {} %", name_, mega,
                                       static_cast<double>(size_) / 1e6,
                                       std::min<std::uint64_t>(100 * position / size_, 100)));
    }

private:
    using Clock = std::chrono::steady_clock;

    const bool shown_ = ::isatty(STDERR_FILENO) != 0;
    Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
    std::string name_;
    std::uint64_t size_ = 0;
};

// Bytes whose reading is shown, and waited for only after the sink has shown what came of others.
class ShownSource : public FileSource {
public:
    ShownSource(int descriptor, Progress& progress, Sink& sink)
        : FileSource(descriptor), progress_(progress), sink_(sink) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        if (!ready())
            sink_.onIdle();
        const std::size_t got = FileSource::read(to, room);
        position_ += got;
        if (got != 0)
            progress_.at(position_);
        return got;
    }

private:
    Progress& progress_;
    Sink& sink_;
    std::uint64_t position_ = 0;
};

} // namespace

void InputKind::addOptions(CLI::App& app, bool limited) {
    app.add_option("--input", name_,
                   "What a file holds: messages (cmap), bare records (record), or either as hex "
                   "or base64 text (hex, hex-record). Recognised by its first bytes (auto) are "
                   "those, such text in its usual forms, and gzip, xz and zstd data")
        ->check(CLI::IsMember(namesOf(kInputs)))
        ->capture_default_str();
    if (!limited) {
        maxReports_ = 0;
        return;
    }
    addNumber(app, "--max-reports", maxReports_,
              "Report N faults of a file, count the rest; 0 = report all");
}

InputKind::Result InputKind::read(const char* name, ByteSource& bytes, Sink& sink) const {
    std::uint64_t faults = 0;
    const auto isTold = [&] { return ++faults <= maxReports_ || maxReports_ == 0; };
    std::vector<std::string> early; // found before it is said what the input is
    bool said = false;
    const FaultHandler onFault = [&](const std::string& what) {
        if (!isTold())
            return;
        std::string line = fmt::format("{}: {}", name, what);
        said ? sink.complaint(kDamaged, line) : early.push_back(std::move(line));
    };
    const auto say = [&](Status status, const std::string& what) {
        if (!what.empty())
            sink.complaint(status, fmt::format("{}: {}", name, what));
        for (const std::string& line : early)
            sink.complaint(kDamaged, line);
        said = true;
    };
    const RecognisedInput input(bytes, rowOf(kInputs, name_).hints, onFault);
    bool more = true;
    if (!input.refusal().empty()) {
        say(kFailed, input.failure() == 0 ? input.refusal() : "");
    } else {
        say(kFine, input.description().empty() ? "" : "recognised as " + input.description());
        Capture capture(input.framing(), [&](const Damage& damage) {
            if (isTold())
                sink.onDamage(name, damage);
        });
        capture.open(input.bytes());
        sink.onBegin(name);
        for (Message message; more && capture.next(message);) {
            message.input = name;
            more = sink.take(message);
        }
        sink.onEnd(capture.position());
    }
    if (faults > maxReports_ && maxReports_ != 0)
        sink.complaint(kDamaged, fmt::format("{}: {} more faults", name, faults - maxReports_));
    return {more, faults};
}

void Inputs::addOptions(CLI::App& app, bool limited) {
    app.add_option("files", files_, "Captures; \"-\" or none: standard input")->type_name("FILE");
    kind_.addOptions(app, limited);
}

std::uint64_t Inputs::read(Sink& sink) const {
    Progress progress;
    std::uint64_t faults = 0;
    bool more = true;
    for (auto path = files_.begin(); more && path != files_.end(); ++path) {
        const char* const name = nameOf(*path);
        const auto fail = [&](int error) {
            sink.complaint(kFailed, fmt::format("{}: {}", name, std::strerror(error)));
        };
        const File file(*path);
        if (file.descriptor() < 0) {
            fail(errno);
            continue;
        }
        progress.open(name, file.size());
        ShownSource bytes(file.descriptor(), progress, sink);
        const InputKind::Result result = kind_.read(name, bytes, sink);
        more = result.more;
        faults += result.faults;
        if (bytes.failure() != 0)
            fail(bytes.failure());
    }
    return faults;
}

bool Inputs::spares(const std::string& output) const {
    struct stat wanted;
    if (output == "-" || ::stat(output.c_str(), &wanted) != 0 || !S_ISREG(wanted.st_mode))
        return true;
    for (const std::string& file : files_) {
        struct stat found;
        if ((file == "-" ? ::fstat(STDIN_FILENO, &found) : ::stat(file.c_str(), &found)) == 0 &&
            found.st_dev == wanted.st_dev && found.st_ino == wanted.st_ino) {
            complain("--output: {} is an input too ({})", output, file);
            return false;
        }
    }
    return true;
}

} // namespace Pegasus::tool
