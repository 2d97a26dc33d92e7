// Where the captures are that the provider reads: a file, or a directory of files.
#pragma once

#include "capture/Tail.h"

#include <string>
#include <vector>

namespace Pegasus::provider {

// Files are followed by what they are, not by their names: one that is renamed inside the directory
// is read on, one that is moved away or deleted is read to its end first. In a directory, names
// that begin with "." and compressed files are passed over.
class Spool {
public:
    Spool(std::string path, capture::Framing framing, capture::FaultHandler onFault);

    using Visitor = std::function<void(std::span<const std::uint8_t> record)>;
    // Hands over the records that came since the last call; those of files seen first now in the
    // order in which the files were written last. Each byte is read once.
    void poll(const Visitor& visitor);

private:
    static constexpr std::size_t kMaxFiles = 256; // open at a time; the newest
    static constexpr unsigned kMaxReports = 20;   // of one poll

    struct Found {
        std::string path;
        struct stat status;
    };
    struct File {
        std::string path; // when seen last
        std::unique_ptr<capture::Tail> file;
        bool there = true;
    };

    bool list(std::vector<Found>& found);
    void update(const std::vector<Found>& found);
    void log(const std::string& what);

    const std::string path_;
    capture::FaultHandler onFault_;
    unsigned reports_ = 0;
    std::string lastError_;                // with the spool itself, as reported
    const std::string* current_ = nullptr; // path of the file that is being read
    capture::Capture capture_;
    std::vector<File> files_;
};

} // namespace Pegasus::provider
