// What the shared library shows of itself: what the public headers mark with KQ_EXPORT, and nothing else.
//
// A class is marked as a whole, so that its type information is one for the library and the programs that use
// it: an exception that the library raises is caught by its type. What a public class keeps to the library is
// KQ_HIDDEN.
#pragma once

#ifdef __ELF__
#define KQ_EXPORT __attribute__((visibility("default")))
#define KQ_HIDDEN __attribute__((visibility("hidden")))
#else
#define KQ_EXPORT
#define KQ_HIDDEN
#endif
