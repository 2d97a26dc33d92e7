// What the command writes, and what it says to people.
#pragma once

#include "event/TextWriter.h"

#include <fmt/format.h>
#include <string>

namespace Pegasus::capture {}
namespace Pegasus::formats {}

namespace Pegasus::tool {

using namespace capture;
using namespace formats;

// Exit statuses. The worst of what happened counts.
enum Status : int {
    kFine = 0,
    kDamaged = 1, // some of the input
    kUsage = 2,
    kFailed = 3, // could not read or write
};

// "mpuevent: ..." on standard error.
void complain(std::string_view message);
template <class... Args>
void complain(fmt::format_string<Args...> format, Args&&... args) {
    complain(std::string_view(fmt::format(format, std::forward<Args>(args)...)));
}

// One line on standard error that stays until something else is written.
void showProgress(std::string_view message);
void hideProgress();

// Writes a file that takes the place of another as a whole, through PATH.new beside it. The errno
// of a failure.
int replaceFile(const std::string& path, std::string_view text);

// Standard output or a file, through one large buffer. The first failure ends the writing; it is
// reported once, by finish() or where it happens. A reader who closed its end is no failure.
class Output {
public:
    ~Output();
    // Makes a file that takes the place of this one when it is whole; "-" is standard output, as if
    // never called. Reports what is wrong and returns false on failure.
    bool open(const std::string& path);
    // Where to write to.
    mpu::TextWriter& text() { return text_; }
    // Writes the buffer when it is well filled. False when writing has come to an end.
    bool proceed() { return text_.view().size() < kBlock || flush(); }
    bool flush();
    // Writes the buffer, then these.
    bool write(std::string_view bytes);
    bool isTerminal() const;
    // Whether it is no terminal; reports for the command if it is.
    bool takesBinary(const char* command) const;
    // Whether it is a terminal on which colours are welcome.
    bool coloured() const;
    // The file, for those who wait for its reader to go.
    int descriptor() const { return descriptor_; }
    // Writes the rest and closes. After a failure, or where reading had one, a file that was there
    // before stays.
    Status finish(Status reading = kFine);

private:
    static constexpr std::size_t kBlock = std::size_t{256} * 1024;

    bool put(std::string_view bytes);
    void replace(Status reading);
    bool fail(int error);

    int descriptor_ = 1;
    std::string name_ = "standard output";
    std::string target_; // of the renaming; empty where the file is written in place
    std::string fresh_;  // beside it
    mpu::StackWriter<64> text_;
    bool ended_ = false;
    Status status_ = kFine;
};

} // namespace Pegasus::tool
