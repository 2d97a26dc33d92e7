// mpuevent follow: the events of captures as they grow.
#include "capture/Tail.h"
#include "tools/mpuevent/Command.h"
#include "tools/mpuevent/Cursor.h"
#include "tools/mpuevent/Events.h"
#include "tools/mpuevent/MetricsFile.h"
#include "tools/mpuevent/Numbers.h"
#include "tools/mpuevent/Receiver.h"
#include "tools/mpuevent/Selector.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace Pegasus::tool {

namespace {

constexpr int kInterval = 200; // ms between looks at files that did not grow

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

struct FramingName {
    const char* name;
    Framing framing;
};
constexpr FramingName kFramings[] = {{"cmap", Framing::Message}, {"record", Framing::Record}};

struct Options {
    std::vector<std::string> files{"-"};
    std::string input = "cmap";
    std::optional<std::uint64_t> last;
    std::string cursor;
    std::string metrics;
    std::string receiver; // none: the output
    EventOptions events;
};

constexpr int kRetry = 1000; // ms between attempts to deliver
constexpr int kGrace = 1000; // ms for a receiver to take what is under way when following ends

// Writes the events, or hands them to a receiver, and counts them.
class Follower : public EventWriter {
public:
    Follower(const Options& options, Output& output)
        : EventWriter(options.events, output, decoding(options)), metrics_(options.metrics) {
        if (!options.receiver.empty())
            receiver_ = makeReceiver(options.receiver, options.events.printing(output));
    }

    // Brings out what was taken. False when that has come to an end.
    bool flush() {
        metrics_.store();
        return receiver_ ? deliver(true) : output_.flush();
    }
    // To wait on: tells when the reader of the output has gone. -1 if nobody reads it.
    int descriptor() const { return receiver_ ? -1 : output_.descriptor(); }
    void onGap() override {
        if (!receiver_)
            EventWriter::onGap();
    }
    void complaint(Status status, const std::string& text) override {
        if (status == kDamaged)
            metrics_.addFaults(1);
        EventWriter::complaint(status, text);
    }
    Status finish() {
        if (receiver_ && receiver_->kept() != 0)
            complaint(kFailed, fmt::format("{}: {} event{} could not be sent", receiver_->name(),
                                           receiver_->kept(), receiver_->kept() == 1 ? "" : "s"));
        return std::max(metrics_.finish(), EventWriter::finish());
    }

private:
    static DecodeOptions decoding(const Options& options) {
        DecodeOptions decoding = options.events.decoding();
        decoding.fieldBasis = decoding.fieldBasis || !options.metrics.empty();
        return decoding;
    }
    void add(const DecodedEvent& event) override {
        metrics_.add(event);
        if (!receiver_)
            return EventWriter::add(event);
        receiver_->add(event);
        (void)deliver(false);
    }
    bool deliver(bool all);

    std::unique_ptr<Receiver> receiver_;
    MetricsFile metrics_;
    bool failing_ = false;
};

// Tries until it is done or the following is over: what comes meanwhile waits where it is.
bool Follower::deliver(bool all) {
    for (int grace = kGrace;;) {
        const Receiver::Result result = receiver_->deliver(all);
        if (result == Receiver::Result::Delivered) {
            if (std::exchange(failing_, false))
                complain("{}: sending again", receiver_->name());
            return true;
        }
        const bool failed = result == Receiver::Result::Failed;
        if (interrupted != 0 && (failed || grace-- == 0))
            return false;
        if (failed && !std::exchange(failing_, true))
            complain("{}: {}; trying again every second", receiver_->name(), receiver_->error());
        (void)::poll(nullptr, 0, failed ? kRetry : 1);
    }
}

// What comes through a pipe or a FIFO.
class Pipe : public ByteSource {
public:
    // Takes the descriptor over.
    Pipe(int descriptor, bool reopened) : descriptor_(descriptor), reopened_(reopened) {}
    ~Pipe() override { ::close(descriptor_); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int descriptor() const { return descriptor_; }
    std::size_t read(std::uint8_t* to, std::size_t room) override {
        pollfd input{descriptor_, POLLIN, 0};
        if (::poll(&input, 1, 0) <= 0)
            return 0;
        const ssize_t got = ::read(descriptor_, to, room);
        if (got > 0)
            return static_cast<std::size_t>(got);
        if (got < 0 && (errno == EAGAIN || errno == EINTR))
            return 0;
        failure_ = got < 0 ? errno : 0;
        ended_ = failure_ != 0 || !reopened_;
        return 0;
    }
    int failure() const override { return failure_; }
    bool growing() const override { return !ended_; }

private:
    int descriptor_;
    bool reopened_; // another writer may come once one has gone: it is a FIFO
    int failure_ = 0;
    bool ended_ = false;
};

// One of the files.
class Followed {
public:
    // `more` becomes false when the sink wants no more of any file.
    Followed(const std::string& path, const Options& options, Sink& sink, bool& more)
        : path_(path), name_(nameOf(path)), sink_(sink), more_(more), last_(options.last),
          framing_(rowOf(kFramings, options.input).framing),
          capture_(framing_, [this](const Damage& damage) { fault(kDamaged, damage.str()); }) {}

    // Begins at the mark. False, and reported, on failure.
    bool open(const std::optional<Mark>& mark);
    // Hands over what came. False when no more can come.
    bool poll();
    // To wait for; -1 for a file that grows.
    void mark(Cursor& cursor) const {
        if (tail_ && path_ != "-")
            cursor.set(path_, Mark::of(*tail_));
    }
    int descriptor() const { return pipe_ ? pipe_->descriptor() : -1; }

private:
    bool fail(int error) {
        fault(kFailed, std::strerror(error));
        return false;
    }
    void fault(Status status, const std::string& what) {
        sink_.complaint(status, fmt::format("{}: {}", name_, what));
    }
    int openFile() const {
        return path_ == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)
                            : ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    }
    Place beforeLast(Tail& tail, std::uint64_t count);
    bool wanted() const { return more_ && interrupted == 0; }
    bool visit(Message message) {
        message.input = name_;
        more_ = sink_.take(message);
        return wanted();
    }
    int read(bool last) {
        return tail_->poll(
            capture_, [this](const Message& message) { return visit(message); }, last);
    }

    const std::string path_;
    const std::string name_;
    Sink& sink_;
    bool& more_;
    const std::optional<std::uint64_t> last_;
    const Framing framing_;
    Capture capture_;
    std::unique_ptr<Tail> tail_; // one of the two
    std::unique_ptr<Pipe> pipe_;
};

bool Followed::open(const std::optional<Mark>& mark) {
    const int descriptor = openFile();
    struct stat status;
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0)
        return fail(errno);
    if (!S_ISREG(status.st_mode)) {
        pipe_ = std::make_unique<Pipe>(descriptor, S_ISFIFO(status.st_mode) && path_ != "-");
        if (S_ISDIR(status.st_mode))
            return fail(EISDIR);
        if (path_ != "-" && !S_ISFIFO(status.st_mode)) {
            fault(kFailed, "neither a file nor a FIFO");
            return false;
        }
        capture_.open(*pipe_);
        return true;
    }
    Place place;
    if (mark) {
        const int marked = openMarked(path_, *mark);
        if (marked >= 0)
            tail_ = std::make_unique<Tail>(marked, Place{mark->offset, 0, {}});
        if (tail_) { // under another name now: poll() reads it to its end first
            ::close(descriptor);
            return true;
        }
        fault(kDamaged, "the file that was read last is gone; what came since may be missing");
    } else if (last_) {
        Tail tail(::dup(descriptor));
        place = beforeLast(tail, *last_);
    }
    tail_ = std::make_unique<Tail>(descriptor, place);
    return true;
}

// The place before the last so many messages of a file.
Place Followed::beforeLast(Tail& tail, std::uint64_t count) {
    std::deque<std::uint64_t> offsets;
    Capture silent(framing_, [](const Damage&) {});
    if (const int error = tail.poll(silent, [&](const Message& message) {
            offsets.push_back(message.offset);
            if (offsets.size() > count)
                offsets.pop_front();
            return interrupted == 0;
        }))
        fail(error);
    return offsets.empty() ? tail.place() : Place{offsets.front(), 0, {}};
}

bool Followed::poll() {
    if (!wanted())
        return true;
    if (pipe_) {
        for (Message message; capture_.next(message) && visit(message);)
            ;
        return pipe_->failure() != 0 ? fail(pipe_->failure()) : pipe_->growing();
    }
    // A file that replaces the one that is open may have come after the last look at that.
    struct stat now;
    const bool replaced =
        path_ != "-" && ::stat(path_.c_str(), &now) == 0 && S_ISREG(now.st_mode) && !tail_->is(now);
    if (const int error = read(replaced); error != 0)
        return fail(error);
    if (replaced && wanted()) {
        const int descriptor = openFile();
        if (descriptor >= 0)
            tail_ = std::make_unique<Tail>(descriptor);
        else if (errno != ENOENT)
            return fail(errno);
    }
    return true;
}

// Waits for more. False when the following is over, be it by the reader of the output, who went.
bool wait(const Follower& follower, const std::vector<std::unique_ptr<Followed>>& files) {
    std::vector<pollfd> waiting{{follower.descriptor(), 0, 0}};
    for (const auto& file : files)
        if (file->descriptor() >= 0)
            waiting.push_back({file->descriptor(), POLLIN, 0});
    (void)::poll(waiting.data(), waiting.size(), kInterval);
    // A FIFO whose writers have gone is ready all the time.
    if (std::any_of(waiting.begin() + 1, waiting.end(),
                    [](const pollfd& one) { return one.revents == POLLHUP; }))
        (void)::poll(waiting.data(), 1, kInterval);
    return interrupted == 0 && !(waiting[0].revents & (POLLERR | POLLNVAL));
}

Status follow(const Options& options) {
    if (!options.events.prepare())
        return kUsage;
    catchSignals();
    Output output;
    Follower follower(options, output);
    Selector selector(options.events.filter, follower);
    Sink& sink = options.events.filter.selects() ? static_cast<Sink&>(selector) : follower;
    bool wanted = true;
    Cursor cursor(options.cursor);
    std::vector<std::unique_ptr<Followed>> files;
    for (const std::string& path : options.files)
        if (auto file = std::make_unique<Followed>(path, options, sink, wanted);
            file->open(cursor.find(path)))
            files.push_back(std::move(file));
    for (bool more = true; more;) {
        std::erase_if(files, [](const auto& file) { return !file->poll(); });
        more = follower.flush();
        if (more) // what is marked as read has been written
            for (const auto& file : files)
                file->mark(cursor);
        if (const int error = cursor.store(); error != 0) {
            follower.complaint(kFailed,
                               fmt::format("{}: {}", options.cursor, std::strerror(error)));
            more = false;
        }
        more = more && !files.empty() && wanted && wait(follower, files);
    }
    return follower.finish();
}

} // namespace

Runner addFollow(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    app.add_option("files", options->files,
                   "Captures that grow, FIFOs; \"-\" or none: standard input")
        ->type_name("FILE");
    app.add_option("--input", options->input,
                   "What they hold: messages (cmap) or bare records (record)")
        ->check(CLI::IsMember(namesOf(kFramings)))
        ->capture_default_str();
    addNumber(app, "--last,-n", options->last, "Begin with the last N events of a file");
    app.add_option("--cursor", options->cursor,
                   "Go on where the last run with this file stopped, and keep it up to date")
        ->type_name("FILE");
    options->events.addOptions(app, true);
    CLI::Option* const receiver =
        app.add_option(
               "--to", options->receiver,
               "Send each event to a log instead of writing it: the systemd journal (journald), "
               "or a receiver of syslog (RFC 5424) through a local socket (syslog: /dev/log; "
               "syslog=/PATH), TCP (syslog=HOST:PORT) or UDP (syslog=udp:HOST:PORT). While none "
               "takes them, events wait in their files")
            ->type_name("RECEIVER")
            ->check(CLI::Validator(faultOfReceiver, ""));
    for (const char* option : {"--format", "--fields", "--columns", "--raw"})
        receiver->excludes(app.get_option(option));
    addMetrics(app, options->metrics);
    return [options] { return follow(*options); };
}

} // namespace Pegasus::tool
