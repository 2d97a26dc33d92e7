// How this build differs from what is shipped.
#pragma once

namespace Pegasus::test {

// Sanitizers reserve addresses without end, keep freed memory and widen stack frames.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kSanitized =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kSanitized = false;
#endif

#ifdef __OPTIMIZE__
inline constexpr bool kSlow = kSanitized;
#else
inline constexpr bool kSlow = true;
#endif

// An emulator's own memory counts as the program's.
inline constexpr bool kEmulated = sizeof MPUEVENT_EMULATOR > 1;

} // namespace Pegasus::test
