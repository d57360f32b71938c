/* Export macro of libBase. Everything libBase offers carries BASE_API; the rest is hidden. */
#ifndef BASE_BASEEXPORT_H
#define BASE_BASEEXPORT_H

/* The C++ headers use C++20 (concepts, std::span, designated initialisers); an older standard
   would fail far inside them, so say so here. C callers are not affected. MSVC reports its
   standard in _MSVC_LANG, since __cplusplus stays 199711L there without /Zc:__cplusplus. */
#if defined(__cplusplus)
#if defined(_MSVC_LANG)
#define BASE_CPLUSPLUS_LEVEL _MSVC_LANG
#else
/** The language level to check: MSVC reports its own in _MSVC_LANG. */
#define BASE_CPLUSPLUS_LEVEL __cplusplus
#endif
#if BASE_CPLUSPLUS_LEVEL < 202002L
#error "libBase needs C++20: use -std=c++20 (CMake's cxx_std_20 and pkg-config give it)"
#endif
#undef BASE_CPLUSPLUS_LEVEL
#endif

#if defined(_WIN32)
#if defined(BASE_BUILDING)
#define BASE_API __declspec(dllexport)
#else
#define BASE_API __declspec(dllimport)
#endif
#else
/** Marks what libBase exports; everything else is hidden (Windows: imported from the DLL). */
#define BASE_API __attribute__((visibility("default")))
#endif

/* Lets the compiler check printf-style arguments where it can. */
#if defined(__GNUC__) || defined(__clang__)
#define BASE_PRINTF(fmt, first) __attribute__((format(printf, fmt, first)))
#else
/** Lets the compiler check printf-style arguments (argument `fmt` is the format, `first` the
    first value); nothing on compilers without the attribute. */
#define BASE_PRINTF(fmt, first)
#endif

#endif
