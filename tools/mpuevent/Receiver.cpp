#include "tools/mpuevent/Receiver.h"

#include "formats/Logs.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#ifdef MPUEVENT_JOURNALD
#define SD_JOURNAL_SUPPRESS_LOCATION // places in this source are of no use to readers
#include <systemd/sd-journal.h>
#endif

namespace Pegasus::tool {

namespace {

constexpr char kJournal[] = "journald";
constexpr std::string_view kSyslog = "syslog";
constexpr std::string_view kSyslogAt = "syslog=";
constexpr char kLocalSyslog[] = "syslog=/dev/log";

#ifdef MPUEVENT_JOURNALD

constexpr char kJournalSocket[] = "/run/systemd/journal/socket";

class Journal : public Receiver {
public:
    explicit Journal(const PrintOptions& options) : Receiver(kJournal), fields_(options) {}

    void add(const DecodedEvent& event) override { event_ = &fields_.of(event); }
    Result deliver(bool) override {
        // The library takes a journal that is not there for one that wants nothing.
        if (::access(kJournalSocket, W_OK) != 0)
            return fail(fmt::format("{}: {}", kJournalSocket, std::strerror(errno)));
        if (!event_)
            return Result::Delivered;
        std::vector<iovec> parts;
        for (const std::string& field : *event_)
            parts.push_back({const_cast<char*>(field.data()), field.size()});
        if (const int status = ::sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
            status < 0)
            return fail(std::strerror(-status));
        event_ = nullptr;
        return Result::Delivered;
    }
    std::size_t kept() const override { return event_ ? 1 : 0; }

private:
    JournalFields fields_;
    const std::vector<std::string>* event_ = nullptr; // the one that is kept
};

#endif

// Where messages of syslog go.
struct Address {
    enum { Unix, Udp, Tcp } protocol;
    std::string host; // or a path
    std::string port;
};

// "tcp:HOST:PORT", "udp:[::1]:PORT", "HOST:PORT", "/PATH".
std::optional<Address> addressFrom(std::string text) {
    if (text.starts_with('/'))
        return text.size() < sizeof(sockaddr_un::sun_path)
                   ? std::optional(Address{Address::Unix, text, {}})
                   : std::nullopt;
    const bool udp = text.starts_with("udp:");
    if (udp || text.starts_with("tcp:"))
        text.erase(0, 4);
    const std::size_t colon = text.rfind(':');
    if (colon == text.npos || colon == 0 || colon + 1 == text.size())
        return std::nullopt;
    std::string host = text.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']'))
        host = host.substr(1, host.size() - 2);
    return Address{udp ? Address::Udp : Address::Tcp, host, text.substr(colon + 1)};
}

std::string hostName() {
    char name[256] = "";
    (void)::gethostname(name, sizeof name - 1);
    return name;
}

// Keeps messages in blocks. One is delivered when the system of a receiver at a TCP socket has
// acknowledged all of it, or when no datagram of it was refused; until then all of it is sent again
// when the connection breaks.
class Syslog : public Receiver {
public:
    Syslog(const std::string& name, const PrintOptions& options)
        : Receiver(name), address_(*addressFrom(name.substr(kSyslogAt.size()))),
          printer_(makeSyslogPrinter(options, {hostName(), std::to_string(::getpid())})) {}
    ~Syslog() override { disconnect(); }
    Syslog(const Syslog&) = delete;
    Syslog& operator=(const Syslog&) = delete;

    void add(const DecodedEvent& event) override {
        message_.clear();
        printer_->print(event, message_);
        const std::string_view text = message_.view();
        // A stream has the number of bytes before each message (RFC 6587).
        messages_.push_back(address_.protocol == Address::Tcp
                                ? fmt::format("{} {}", text.size(), text)
                                : std::string(text));
        bytes_ += messages_.back().size();
    }
    Result deliver(bool all) override {
        if (!all && bytes_ < kBlock)
            return Result::Delivered;
        const Result result = connect() && send() ? confirm() : Result::Failed;
        if (result == Result::Delivered) {
            messages_.clear();
            sent_ = bytes_ = 0;
        } else if (result == Result::Failed) {
            disconnect();
        }
        return result;
    }
    std::size_t kept() const override { return messages_.size(); }

private:
    static constexpr std::size_t kBlock = std::size_t{64} * 1024;
    static constexpr unsigned kPatience = 30000; // ms for a receiver to acknowledge

    bool connect();
    bool connect(int family, const sockaddr* address, socklen_t size);
    bool send();
    Result confirm();
    void disconnect() {
        if (socket_ >= 0)
            ::close(socket_);
        socket_ = -1;
        sent_ = 0;
    }

    const Address address_;
    const std::unique_ptr<Printer> printer_;
    mpu::BodyWriter message_;
    std::vector<std::string> messages_; // the block
    std::size_t bytes_ = 0;             // of them
    std::size_t sent_ = 0;              // messages of it, through this connection
    int socket_ = -1;
};

bool Syslog::connect(int family, const sockaddr* address, socklen_t size) {
    const bool stream = address_.protocol == Address::Tcp;
    socket_ = ::socket(family, (stream ? SOCK_STREAM : SOCK_DGRAM) | SOCK_CLOEXEC, 0);
    if (socket_ >= 0 && stream)
        (void)::setsockopt(socket_, IPPROTO_TCP, TCP_USER_TIMEOUT, &kPatience, sizeof kPatience);
    if (socket_ >= 0 && ::connect(socket_, address, size) == 0)
        return true;
    fail(std::strerror(errno));
    disconnect();
    return false;
}

bool Syslog::connect() {
    if (socket_ >= 0)
        return true;
    if (address_.protocol == Address::Unix) {
        sockaddr_un local{};
        local.sun_family = AF_UNIX;
        address_.host.copy(local.sun_path, sizeof local.sun_path - 1);
        return connect(AF_UNIX, reinterpret_cast<const sockaddr*>(&local), sizeof local);
    }
    addrinfo wanted{};
    wanted.ai_socktype = address_.protocol == Address::Tcp ? SOCK_STREAM : SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (const int status =
            ::getaddrinfo(address_.host.c_str(), address_.port.c_str(), &wanted, &found);
        status != 0) {
        fail(status == EAI_SYSTEM ? std::strerror(errno) : ::gai_strerror(status));
        return false;
    }
    for (const addrinfo* one = found; one && socket_ < 0; one = one->ai_next)
        (void)connect(one->ai_family, one->ai_addr, one->ai_addrlen);
    ::freeaddrinfo(found);
    return socket_ >= 0;
}

bool Syslog::send() {
    for (; sent_ < messages_.size(); ++sent_) {
        std::string_view rest = messages_[sent_];
        const int more =
            address_.protocol == Address::Tcp && sent_ + 1 < messages_.size() ? MSG_MORE : 0;
        while (!rest.empty()) {
            const ssize_t done = ::send(socket_, rest.data(), rest.size(), MSG_NOSIGNAL | more);
            if (done < 0) {
                fail(std::strerror(errno));
                return false;
            }
            rest.remove_prefix(static_cast<std::size_t>(done));
        }
    }
    return true;
}

Receiver::Result Syslog::confirm() {
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0)
        return fail(std::strerror(error != 0 ? error : errno));
    if (address_.protocol != Address::Tcp)
        return Result::Delivered;
    pollfd connection{socket_, POLLRDHUP, 0};
    if (::poll(&connection, 1, 0) > 0)
        return fail("connection closed by the receiver");
    int unacknowledged = 0;
    return ::ioctl(socket_, SIOCOUTQ, &unacknowledged) == 0 && unacknowledged != 0
               ? Result::Waiting
               : Result::Delivered;
}

} // namespace

std::string faultOfReceiver(const std::string& name) {
    if (name == kJournal || name == kSyslog ||
        (name.starts_with(kSyslogAt) && addressFrom(name.substr(kSyslogAt.size()))))
        return {};
    return fmt::format("\"{}\" is none of journald, syslog, syslog=[tcp:|udp:]HOST:PORT and "
                       "syslog=/PATH",
                       name);
}

std::unique_ptr<Receiver> makeReceiver(const std::string& name, const PrintOptions& options) {
    std::unique_ptr<Receiver> made;
    if (name != kJournal)
        made = std::make_unique<Syslog>(name == kSyslog ? kLocalSyslog : name, options);
    else
#ifdef MPUEVENT_JOURNALD
        made = std::make_unique<Journal>(options);
#else
        throw std::runtime_error("built without libsystemd: nothing can be sent to the journal");
#endif
    if (made->deliver(true) == Receiver::Result::Failed)
        throw std::runtime_error(fmt::format("{}: {}", made->name(), made->error()));
    return made;
}

} // namespace Pegasus::tool
