#ifndef TALVIR_GENTL_PLATFORM_H
#define TALVIR_GENTL_PLATFORM_H
/* Calling convention, export marking and basic types of the GenTL C interface.
 * Producers are plain C libraries loaded at run time, so everything here is C-compatible. */

#include <stddef.h>
#include <stdint.h>

/* 32-bit x86 uses __stdcall on both Windows and Linux; every other target uses the platform default. */
#if defined(_WIN32) && !defined(_WIN64)
#define GC_CALLTYPE __stdcall
#elif defined(__i386__)
#define GC_CALLTYPE __attribute__((stdcall))
#else
#define GC_CALLTYPE
#endif

/* Producers export the functions under their plain C names; consumers resolve them at run time. */
#if defined(_WIN32)
#if defined(GENTL_PRODUCER_EXPORTS)
#define GC_API_EXPORT __declspec(dllexport)
#else
#define GC_API_EXPORT
#endif
#else
#if defined(GENTL_PRODUCER_EXPORTS)
#define GC_API_EXPORT __attribute__((visibility("default")))
#else
#define GC_API_EXPORT
#endif
#endif

#ifdef __cplusplus
#define GENTL_EXTERN_C_BEGIN extern "C" {
#define GENTL_EXTERN_C_END }
#define GENTL_NAMESPACE_BEGIN namespace GenTL {
#define GENTL_NAMESPACE_END }
#else
#define GENTL_EXTERN_C_BEGIN
#define GENTL_EXTERN_C_END
#define GENTL_NAMESPACE_BEGIN
#define GENTL_NAMESPACE_END
#endif

#endif
