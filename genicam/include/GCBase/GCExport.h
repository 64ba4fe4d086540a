#pragma once
// Export control for the genicam shared library. Every public class, interface and exception carries GENICAM_API so
// that its type information is shared across module boundaries (dynamic_cast and catch work in applications).
#if defined(_WIN32)
#if defined(GENICAM_BUILDING_LIBRARY)
#define GENICAM_API __declspec(dllexport)
#else
#define GENICAM_API __declspec(dllimport)
#endif
#else
#define GENICAM_API __attribute__((visibility("default")))
#endif
