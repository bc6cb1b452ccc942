// What the shared library exports: what the public headers mark with KQ_EXPORT, and nothing else.
//
// Classes are marked as a whole, so that the library and the programs that use it share their type
// information: an exception that the library raises is caught by its type. KQ_HIDDEN marks the parts of a
// public class that only the library uses.
#pragma once

#ifdef __ELF__
#define KQ_EXPORT __attribute__((visibility("default")))
#define KQ_HIDDEN __attribute__((visibility("hidden")))
#else
#define KQ_EXPORT
#define KQ_HIDDEN
#endif
