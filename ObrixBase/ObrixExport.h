/* Export macro of libObrixBase, valid in C and C++. Only declarations that carry OBRIX_API
   are visible outside the shared library. */
#ifndef OBRIX_OBRIXEXPORT_H
#define OBRIX_OBRIXEXPORT_H

/* The C++ headers use C++20 (concepts, std::span, designated initialisers); an older standard
   would fail far inside them, so say so here. C callers are not affected. MSVC reports its
   standard in _MSVC_LANG, since __cplusplus stays 199711L there without /Zc:__cplusplus. */
#if defined(__cplusplus)
#if defined(_MSVC_LANG)
#define OBRIX_CPLUSPLUS_LEVEL _MSVC_LANG
#else
/** The language level to check: MSVC reports its own in _MSVC_LANG. */
#define OBRIX_CPLUSPLUS_LEVEL __cplusplus
#endif
#if OBRIX_CPLUSPLUS_LEVEL < 202002L
#error "ObrixBase needs C++20: use -std=c++20 (CMake's cxx_std_20 and pkg-config give it)"
#endif
#undef OBRIX_CPLUSPLUS_LEVEL
#endif

#if defined(_WIN32)
#if defined(OBRIX_BUILDING)
#define OBRIX_API __declspec(dllexport)
#else
#define OBRIX_API __declspec(dllimport)
#endif
#else
/** Marks what libObrixBase exports; everything else is hidden (Windows: imported from the DLL). */
#define OBRIX_API __attribute__((visibility("default")))
#endif

/* Marks the library's explicit instantiations of member templates. A DLL exports the members
   of a class that carries OBRIX_API, but not the member templates instantiated for it, so each
   such instantiation exports itself; on ELF it takes the class's visibility. */
#if defined(_WIN32) && defined(OBRIX_BUILDING)
#define OBRIX_MEMBER_TEMPLATE_API __declspec(dllexport)
#else
/** Exports a member template's explicit instantiations from the DLL on Windows; empty elsewhere. */
#define OBRIX_MEMBER_TEMPLATE_API
#endif

/* Marks the library's explicit instantiations of its exported class templates (the numeric
   vectors and matrices over double, int and signed char). GCC takes the visibility from the
   exported template itself and rejects a repeated attribute; clang needs it on the
   instantiation, since the templates' own members name IntVec (and so instantiate it) before
   the instantiation is reached. */
#if defined(__clang__)
#define OBRIX_INSTANTIATION_API OBRIX_API
#else
/** Marks explicit instantiations for export where the compiler wants it there (clang). */
#define OBRIX_INSTANTIATION_API
#endif

/* Opens and closes C linkage in the C-interface headers. */
#ifdef __cplusplus
/** Opens C linkage in the C-interface headers (nothing in C). */
#define OBRIX_EXTERN_C_BEGIN extern "C" {
/** Closes what OBRIX_EXTERN_C_BEGIN opened. */
#define OBRIX_EXTERN_C_END }
#else
#define OBRIX_EXTERN_C_BEGIN
#define OBRIX_EXTERN_C_END
#endif

#endif
