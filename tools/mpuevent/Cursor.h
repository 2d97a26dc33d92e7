// Where the following of files goes on after a restart.
#pragma once

#include "capture/Tail.h"

#include <map>
#include <optional>

namespace Pegasus::tool {

// How far a file was read. Known by its inode and its first bytes, for an inode may be used again.
struct Mark {
    std::uint64_t device;
    std::uint64_t inode;
    std::uint64_t offset;
    std::uint64_t fingerprint;

    static Mark of(const capture::Tail& tail);
    bool operator==(const Mark&) const = default;
};

class Cursor {
public:
    // No path: nothing is kept. Throws when there is a file that is none of ours, or can't be read.
    explicit Cursor(std::string path);

    // The mark of a file when it was followed last.
    std::optional<Mark> find(const std::string& file) const;
    void set(const std::string& file, const Mark& mark);
    // Writes the marks when they have changed: all of them or none. The errno of a failure.
    int store();

private:
    const std::string path_;
    std::map<std::string, Mark> marks_;
    bool changed_ = false;
};

// The file of a mark, opened: under its name or, when it was renamed, in the same directory. -1 if
// it is not there.
int openMarked(const std::string& file, const Mark& mark);

} // namespace Pegasus::tool
