#include "tools/mpuevent/Inputs.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace Pegasus::tool {

namespace {

struct Input {
    const char* name;
    Framing framing;
    bool hex;
};
constexpr Input kInputs[] = {
    {"cmap", Framing::Message, false},
    {"record", Framing::Record, false},
    {"hex", Framing::Message, true},
    {"hex-record", Framing::Record, true},
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

// Bytes whose reading is shown.
class ShownSource : public FileSource {
public:
    ShownSource(int descriptor, Progress& progress) : FileSource(descriptor), progress_(progress) {}
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        const std::size_t got = FileSource::read(to, room);
        position_ += got;
        if (got != 0)
            progress_.at(position_);
        return got;
    }

private:
    Progress& progress_;
    std::uint64_t position_ = 0;
};

} // namespace

void InputKind::addOption(CLI::App& app) {
    app.add_option("--input", name_,
                   "What a file holds: messages (cmap), bare records (record), or either as hex "
                   "text (hex, hex-record)")
        ->check(CLI::IsMember(namesOf(kInputs)))
        ->capture_default_str();
    app.add_option("--max-reports", maxReports_,
                   "Report N faults of a file, count the rest; 0 = report all")
        ->type_name("N")
        ->capture_default_str();
}

InputKind::Result InputKind::read(const std::string& name, ByteSource& bytes, Sink& sink) const {
    const Input& input = rowOf(kInputs, name_);
    std::uint64_t faults = 0;
    const FaultHandler onFault = [&](const std::string& what) {
        if (++faults <= maxReports_ || maxReports_ == 0)
            sink.complaint(kDamaged, fmt::format("{}: {}", name, what));
    };
    std::optional<HexSource> hex;
    if (input.hex)
        hex.emplace(bytes, onFault);
    Capture capture(input.framing, [&](const Damage& damage) { onFault(damage.str()); });
    capture.open(hex ? static_cast<ByteSource&>(*hex) : bytes);
    bool more = true;
    for (Message message; more && capture.next(message);)
        more = sink.take(message);
    if (faults > maxReports_ && maxReports_ != 0)
        sink.complaint(kDamaged, fmt::format("{}: {} more faults", name, faults - maxReports_));
    return {more, faults};
}

void Inputs::addOptions(CLI::App& app) {
    app.add_option("files", files_, "Captures; \"-\" or none: standard input")->type_name("FILE");
    kind_.addOption(app);
}

std::uint64_t Inputs::read(Sink& sink) const {
    Progress progress;
    std::uint64_t faults = 0;
    bool more = true;
    for (auto path = files_.begin(); more && path != files_.end(); ++path) {
        const std::string name = *path == "-" ? "standard input" : *path;
        const auto fail = [&](int error) {
            sink.complaint(kFailed, fmt::format("{}: {}", name, std::strerror(error)));
        };
        const File file(*path);
        if (file.descriptor() < 0) {
            fail(errno);
            continue;
        }
        progress.open(name, file.size());
        ShownSource bytes(file.descriptor(), progress);
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
