#include "capture/Input.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Pegasus::capture {

InputFile::InputFile(const std::string& path)
    : descriptor_(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      error_(descriptor_ < 0 ? errno : 0) {
    struct stat found;
    if (error_ == 0 && ::fstat(descriptor_, &found) == 0 && S_ISDIR(found.st_mode))
        error_ = EISDIR; // opening it works, reading does not
}

InputFile::~InputFile() {
    if (descriptor_ > STDIN_FILENO)
        ::close(descriptor_);
}

Input::Input(ByteSource& bytes, InputHints hints, FaultHandler onFault, DamageHandler onDamage,
             ByteRange range)
    : range_(range), onFault_(std::move(onFault)),
      recognised_(bytes, hints, [this](const std::string& what) {
          if (range_.has(position()))
              onFault_(what);
      }) {
    if (!recognised_.refusal().empty())
        return;
    capture_.emplace(recognised_.framing(),
                     [this, onDamage = std::move(onDamage)](const Damage& damage) {
                         if (range_.has(damage.offset))
                             onDamage(damage);
                     });
    capture_->open(recognised_.bytes());
}

bool Input::next(Message& message) {
    while (capture_ && capture_->next(message) && message.offset < range_.end)
        if (message.offset >= range_.begin)
            return true;
    return false;
}

} // namespace Pegasus::capture
