#pragma once

/// PATINA_EXPORT marks the two entry points of a plug-in; everything else in it stays hidden.
/// The only place where compiler extensions are used.

#if defined(_WIN32)
#define PATINA_EXPORT __declspec(dllexport)
#else
#define PATINA_EXPORT __attribute__((visibility("default")))
#endif
