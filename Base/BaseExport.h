/* Export macro of libBase. Everything libBase offers carries BASE_API; the rest is hidden. */
#ifndef BASE_BASEEXPORT_H
#define BASE_BASEEXPORT_H

#if defined(_WIN32)
#if defined(BASE_BUILDING)
#define BASE_API __declspec(dllexport)
#else
#define BASE_API __declspec(dllimport)
#endif
#else
#define BASE_API __attribute__((visibility("default")))
#endif

/* Lets the compiler check printf-style arguments where it can. */
#if defined(__GNUC__) || defined(__clang__)
#define BASE_PRINTF(fmt, first) __attribute__((format(printf, fmt, first)))
#else
#define BASE_PRINTF(fmt, first)
#endif

#endif
