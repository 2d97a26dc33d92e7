#include "tools/mpuevent/Inputs.h"

#include "capture/Input.h"
#include "tools/mpuevent/Merge.h"
#include "tools/mpuevent/Numbers.h"
#include "tools/mpuevent/Unique.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <numeric>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Pegasus::tool {

namespace {

bool examine(const std::string& path, struct stat& found) {
    return (path == "-" ? ::fstat(STDIN_FILENO, &found) : ::stat(path.c_str(), &found)) == 0;
}

// 0 for what has none.
std::uint64_t sizeOf(const std::string& path) {
    struct stat found;
    return examine(path, found) && S_ISREG(found.st_mode)
               ? static_cast<std::uint64_t>(found.st_size)
               : 0;
}

// How far the reading is, on standard error when that is a terminal and it takes its time.
class Progress {
public:
    ~Progress() { hideProgress(); }
    void open(const std::string& name, std::uint64_t size) {
        name_ = name;
        size_ = size;
        position_ = 0;
    }
    void add(std::uint64_t count) {
        position_ += count;
        if (!shown_)
            return;
        const Clock::time_point now = Clock::now();
        if (now < next_)
            return;
        next_ = now + std::chrono::milliseconds(200);
        const double mega = static_cast<double>(position_) / 1e6;
        showProgress(size_ == 0
                         ? fmt::format("{}: {:.1f} MB", name_, mega)
                         : fmt::format("{}: {:.1f} of {:.1f} MB, {} %", name_, mega,
                                       static_cast<double>(size_) / 1e6,
                                       std::min<std::uint64_t>(100 * position_ / size_, 100)));
    }

private:
    using Clock = std::chrono::steady_clock;

    const bool shown_ = ::isatty(STDERR_FILENO) != 0;
    Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
    std::string name_;
    std::uint64_t size_ = 0;
    std::uint64_t position_ = 0;
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
        if (got != 0)
            progress_.add(got);
        return got;
    }

private:
    Progress& progress_;
    Sink& sink_;
};

// One input from its first message to its last.
class Reader : public MessageStream {
public:
    // The messages keep a pointer to the path. The sink is told of one that is `merged` at its end.
    Reader(const std::string& path, const InputOptions& options, bool merged, Progress& progress,
           Sink& sink, std::uint64_t& allFaults)
        : name_(nameOf(path)), options_(options), merged_(merged), sink_(sink),
          allFaults_(allFaults), file_(path), bytes_(file_.descriptor(), progress, sink) {
        if (file_.error() != 0)
            say(kFailed, std::strerror(file_.error()));
        else
            recognise();
    }
    bool next(Message& message) override {
        if (!input_ || !input_->next(message)) {
            close();
            return false;
        }
        message.input = name_;
        return true;
    }
    void close() override {
        if (std::exchange(closed_, true))
            return;
        const bool isCapture = input_ && input_->recognised().refusal().empty();
        if (isCapture && merged_)
            sink_.onBegin(name_);
        if (isCapture) {
            const std::uint64_t end = std::min(input_->position(), range_.end);
            sink_.onEnd(end - std::min(range_.begin, end));
        }
        if (faults_ > options_.maxReports && options_.maxReports != 0)
            say(kDamaged, fmt::format("{} more faults", faults_ - options_.maxReports));
        if (bytes_.failure() != 0)
            say(kFailed, std::strerror(bytes_.failure()));
    }

private:
    void recognise() {
        const FaultHandler onFault = [this](const std::string& what) {
            if (isTold())
                recognised_ ? say(kDamaged, what) : early_.push_back(what);
        };
        struct stat status;
        const bool isFile = ::fstat(file_.descriptor(), &status) == 0 && S_ISREG(status.st_mode);
        const Part& part = options_.part;
        if (!part.isWhole() && isFile) {
            const auto size = static_cast<std::uint64_t>(status.st_size);
            range_ = {part.begin(size), part.end(size)};
        }
        const DamageHandler onDamage = [this](const Damage& damage) {
            if (isTold())
                sink_.onDamage(name_, damage);
        };
        input_.emplace(bytes_, rowOf(kInputKinds, options_.kind).hints, onFault, onDamage, range_);
        const RecognisedInput& found = input_->recognised();
        const bool refused = !found.refusal().empty();
        if (refused && found.failure() == 0)
            say(kFailed, found.refusal());
        else if (!refused && !found.description().empty())
            say(kFine, "recognised as " + found.description());
        for (const std::string& what : early_)
            say(kDamaged, what);
        recognised_ = true;
        if (!refused && !part.isWhole() && !(isFile && found.isPlain())) {
            say(kUsage, "--part takes a plain capture: no pipe, no compressed data, no text");
            input_.reset();
        } else if (!refused && !merged_) {
            sink_.onBegin(name_);
        }
    }
    bool isTold() {
        ++allFaults_;
        return ++faults_ <= options_.maxReports || options_.maxReports == 0;
    }
    void say(Status status, std::string_view what) {
        sink_.complaint(status, fmt::format("{}: {}", name_, what));
    }

    const char* const name_;
    const InputOptions& options_;
    const bool merged_;
    Sink& sink_;
    std::uint64_t& allFaults_;
    std::uint64_t faults_ = 0;
    ByteRange range_;                // of the bytes in which wanted messages begin
    std::vector<std::string> early_; // faults found before it is said what the input is
    bool recognised_ = false;
    bool closed_ = false;
    const InputFile file_;
    ShownSource bytes_;
    std::optional<Input> input_;
};

} // namespace

void Inputs::addOptions(CLI::App& app, bool ordered) {
    app.add_option("files", files_, "Captures; \"-\" or none: standard input")->type_name("FILE");
    app.add_option("--input", options_.kind,
                   "What a file holds: messages (cmap), bare records (record), or either as hex "
                   "or base64 text (hex, hex-record). Recognised by its first bytes (auto) are "
                   "those, such text in its usual forms, and gzip, xz and zstd data")
        ->check(CLI::IsMember(namesOf(kInputKinds)))
        ->capture_default_str();
    if (ordered) {
        options_.maxReports = 0;
        return;
    }
    addNumber(app, "--max-reports", options_.maxReports,
              "Report N faults of a file, count the rest; 0 = report all");
    app.add_flag("--merge", merged_,
                 "Read all files in the order of their time stamps; events of one file keep "
                 "their order. More than 32 files are merged through temporary files, in $TMPDIR "
                 "if set, that take as much room as the files unpacked");
    app.add_flag("--unique", unique_,
                 "Leave out events that came before, in any file: same controller, log and "
                 "sequence number, and the same bytes. Keeps about 16 bytes per event in memory");
}

void Inputs::addPart(CLI::App& app) {
    const auto take = [this](const std::string& value) {
        const std::optional<Part> part = Part::from(value);
        if (!part)
            throw CLI::ValidationError(
                "--part",
                fmt::format("\"{}\" is not a part such as 3/8, of {} at most", value, Part::kMost));
        options_.part = *part;
    };
    CLI::Option* const option =
        app.add_option_function<std::string>(
               "--part", take,
               "Only the K-th of N parts of a plain capture: the messages and the damage that "
               "begin in its share of the bytes. All N parts, one after the other, are the whole")
            ->type_name("K/N");
    for (const char* const other :
         {"--merge", "--unique", "--limit", "--last", "--reverse", "--context", "--around"})
        if (CLI::Option* const excluded = app.get_option_no_throw(other))
            option->excludes(excluded);
}

std::uint64_t Inputs::read(Sink& sink) const {
    if (!unique_)
        return readAll(sink);
    Unique unique(sink);
    return readAll(unique);
}

std::uint64_t Inputs::readAll(Sink& sink) const {
    Progress progress;
    std::uint64_t faults = 0;
    if (merged_ && files_.size() > 1) {
        if (std::count(files_.begin(), files_.end(), "-") > 1) {
            sink.complaint(kUsage, "--merge: standard input is named more than once");
            return faults;
        }
        progress.open(fmt::format("{} captures", files_.size()),
                      std::accumulate(files_.begin(), files_.end(), std::uint64_t{0},
                                      [](std::uint64_t sum, const std::string& path) {
                                          return sum + sizeOf(path);
                                      }));
        const auto open = [&](std::size_t index) {
            return std::make_unique<Reader>(files_[index], options_, true, progress, sink, faults);
        };
        merge(files_.size(), open, [&sink](const Message& message) { return sink.take(message); });
        return faults;
    }
    if (!options_.part.isWhole() && files_.size() > 1) {
        sink.complaint(kUsage, "--part takes one capture");
        return faults;
    }
    bool more = true;
    for (auto path = files_.begin(); more && path != files_.end(); ++path) {
        progress.open(nameOf(*path), sizeOf(*path));
        Reader reader(*path, options_, false, progress, sink, faults);
        for (Message message; more && reader.next(message);)
            more = sink.take(message);
        reader.close();
    }
    return faults;
}

bool Inputs::spares(const std::string& output) const {
    struct stat wanted;
    if (output == "-" || ::stat(output.c_str(), &wanted) != 0 || !S_ISREG(wanted.st_mode))
        return true;
    for (const std::string& file : files_) {
        struct stat found;
        if (examine(file, found) && found.st_dev == wanted.st_dev &&
            found.st_ino == wanted.st_ino) {
            complain("--output: {} is an input too ({})", output, file);
            return false;
        }
    }
    return true;
}

} // namespace Pegasus::tool
