#include "tools/mpuevent/Cursor.h"

#include "tools/mpuevent/Output.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace Pegasus::tool {

namespace {

constexpr char kFirstLine[] = "mpuevent cursor 1";
constexpr std::uint64_t kFingerprinted = 4096; // bytes

bool isMarked(int descriptor, const Mark& mark) {
    struct stat status;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_dev != mark.device || status.st_ino != mark.inode ||
        static_cast<std::uint64_t>(status.st_size) < mark.offset)
        return false;
    const capture::Tail tail(::dup(descriptor));
    return tail.fingerprint(std::min(mark.offset, kFingerprinted)) == mark.fingerprint;
}

int openIfMarked(const std::string& path, const Mark& mark) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0 || isMarked(descriptor, mark))
        return descriptor;
    ::close(descriptor);
    return -1;
}

} // namespace

Mark Mark::of(const capture::Tail& tail) {
    // What is passed over and not reported yet is read once more.
    const std::uint64_t offset = tail.place().offset - tail.place().passedOver;
    return {tail.status().st_dev, tail.status().st_ino, offset,
            tail.fingerprint(std::min(offset, kFingerprinted))};
}

int openMarked(const std::string& file, const Mark& mark) {
    if (const int descriptor = openIfMarked(file, mark); descriptor >= 0)
        return descriptor;
    const std::size_t slash = file.rfind('/');
    const std::string folder = slash == file.npos ? "." : file.substr(0, slash + 1);
    DIR* const directory = ::opendir(folder.c_str());
    int found = -1;
    while (const dirent* entry = directory && found < 0
                                     ? ::readdir(directory) // NOLINT(concurrency-mt-unsafe)
                                     : nullptr)
        if (entry->d_ino == mark.inode)
            found = openIfMarked(folder + "/" + entry->d_name, mark);
    if (directory)
        ::closedir(directory);
    return found;
}

Cursor::Cursor(std::string path) : path_(std::move(path)) {
    if (path_.empty())
        return;
    std::ifstream in(path_);
    if (!in && errno == ENOENT)
        return;
    const auto refuse = [&] { throw std::runtime_error(path_ + ": not a cursor of mpuevent"); };
    std::string line;
    if (!std::getline(in, line) || line != kFirstLine)
        refuse();
    Mark mark;
    while (in >> mark.device >> mark.inode >> mark.offset >> mark.fingerprint && in.get() == ' ' &&
           std::getline(in, line))
        marks_[line] = mark;
    if (!in.eof())
        refuse();
}

std::optional<Mark> Cursor::find(const std::string& file) const {
    const auto found = marks_.find(file);
    return found == marks_.end() ? std::nullopt : std::optional(found->second);
}

void Cursor::set(const std::string& file, const Mark& mark) {
    const auto [at, added] = marks_.emplace(file, mark);
    changed_ = changed_ || added || at->second != mark;
    at->second = mark;
}

int Cursor::store() {
    if (path_.empty() || !changed_)
        return 0;
    std::string text = fmt::format("{}\n", kFirstLine);
    for (const auto& [file, mark] : marks_)
        text += fmt::format("{} {} {} {} {}\n", mark.device, mark.inode, mark.offset,
                            mark.fingerprint, file);
    if (const int error = replaceFile(path_, text); error != 0)
        return error;
    changed_ = false;
    return 0;
}

} // namespace Pegasus::tool
