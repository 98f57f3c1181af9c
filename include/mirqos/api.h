#ifndef MIRQOS_API_H
#define MIRQOS_API_H

/// MIRQOS_API marks what the library exports. A host needs no definition of its own. The library's
/// own build defines MIRQOS_BUILDING (which wins over the other); code that links the library's
/// parts statically, as its tools' and unit tests' builds do, defines MIRQOS_STATIC.
#if defined(_WIN32) && defined(MIRQOS_BUILDING)
#define MIRQOS_API __declspec(dllexport)
#elif defined(_WIN32) && defined(MIRQOS_STATIC)
#define MIRQOS_API
#elif defined(_WIN32)
#define MIRQOS_API __declspec(dllimport)
#elif defined(__GNUC__)
#define MIRQOS_API __attribute__((visibility("default")))
#else
#define MIRQOS_API
#endif

#endif
