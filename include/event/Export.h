// Visibility of the library's interface. Everything else is hidden, so that the shared library's
// symbol table is its documented interface and nothing more.
#pragma once

#define MPUEVENT_EXPORT __attribute__((visibility("default")))
// For members of an exported class that only the library calls.
#define MPUEVENT_LOCAL __attribute__((visibility("hidden")))
