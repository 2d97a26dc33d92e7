#include "tools/mpuevent/Inputs.h"

#include <algorithm>
#include <cerrno>
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

constexpr unsigned kMaxReports = 20; // of one file; the rest is counted

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

private:
    int descriptor_;
};

} // namespace

void Inputs::addOptions(CLI::App& app) {
    app.add_option("files", files_, "Captures; \"-\" or none: standard input")->type_name("FILE");
    app.add_option("--input", input_,
                   "What a file holds: messages (cmap), bare records (record), or either as hex "
                   "text (hex, hex-record)")
        ->check(CLI::IsMember(namesOf(kInputs)))
        ->capture_default_str();
}

void Inputs::read(Sink& sink) const {
    const Input& input = rowOf(kInputs, input_);
    std::string name;
    unsigned reports = 0;
    const Report report = [&](const std::string& what) {
        if (++reports <= kMaxReports)
            sink.complaint(kDamaged, fmt::format("{}: {}", name, what));
    };
    const auto fail = [&](int error) {
        sink.complaint(kFailed, fmt::format("{}: {}", name, std::strerror(error)));
    };

    Capture capture(input.framing, report);
    bool more = true;
    for (auto path = files_.begin(); more && path != files_.end(); ++path) {
        name = *path == "-" ? "standard input" : *path;
        reports = 0;
        const File file(*path);
        if (file.descriptor() < 0) {
            fail(errno);
            continue;
        }
        FileSource bytes(file.descriptor());
        std::optional<HexSource> hex;
        if (input.hex)
            hex.emplace(bytes, report);
        capture.open(hex ? static_cast<ByteSource&>(*hex) : bytes);
        Message message;
        while (more && capture.next(message))
            more = sink.take(message);
        if (reports > kMaxReports)
            sink.complaint(kDamaged,
                           fmt::format("{}: {} more faults", name, reports - kMaxReports));
        if (bytes.failure() != 0)
            fail(bytes.failure());
    }
}

const std::string* Inputs::find(const std::string& path) const {
    struct stat wanted;
    if (::stat(path.c_str(), &wanted) != 0 || !S_ISREG(wanted.st_mode))
        return nullptr;
    for (const std::string& file : files_) {
        struct stat found;
        if ((file == "-" ? ::fstat(STDIN_FILENO, &found) : ::stat(file.c_str(), &found)) == 0 &&
            found.st_dev == wanted.st_dev && found.st_ino == wanted.st_ino)
            return &file;
    }
    return nullptr;
}

} // namespace Pegasus::tool
