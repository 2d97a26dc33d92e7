// Several captures as one, in the order of time.
#pragma once

#include "tools/mpuevent/Spool.h"

#include <functional>

namespace Pegasus::tool {

// Opens input number `index`.
using OpenStream = std::function<std::unique_ptr<MessageStream>(std::size_t index)>;
// Returns false when it wants no more.
using TakeMessage = std::function<bool(const Message&)>;

// Hands over the messages of `count` inputs in the order of their time stamps. Those of one input
// keep their order: where its clock goes back, an event counts as late as the latest before it. At
// the same time the first input comes first.
//
// Few inputs are open at a time. When there are more, groups of them are merged into temporary
// files, and so on: memory does not grow with the number of inputs.
void merge(std::size_t count, const OpenStream& open, const TakeMessage& take);

} // namespace Pegasus::tool
