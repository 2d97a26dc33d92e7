// Input streams of the management-protocol library.
#pragma once

#include "event/Export.h"

#include <cstddef>

namespace Pegasus {

class MPUEVENT_EXPORT Avrel_istream {
public:
    virtual ~Avrel_istream();

    // Reads up to `count` bytes into `buffer`; gcount() tells how that went.
    virtual void read(char* buffer, unsigned int count) = 0;
    // Bytes that the last read delivered; fewer than asked for at the end of the data, negative on
    // error.
    virtual int gcount() const = 0;
};

// Reads from memory that the caller keeps alive.
class MPUEVENT_EXPORT Avrel_memory_istream : public Avrel_istream {
public:
    Avrel_memory_istream(const void* data, std::size_t size);
    void read(char* buffer, unsigned int count) override;
    int gcount() const override;

private:
    const char* next_;
    std::size_t left_;
    int delivered_;
};

// Reads from a file descriptor that the caller owns; interrupted and partial reads are continued.
class MPUEVENT_EXPORT Avrel_fd_istream : public Avrel_istream {
public:
    explicit Avrel_fd_istream(int descriptor);
    void read(char* buffer, unsigned int count) override;
    int gcount() const override;

private:
    int descriptor_;
    int delivered_;
};

} // namespace Pegasus
