#pragma once
// Marks what libTalvir exports. Everything else in the library is hidden.
#if defined(_WIN32)
#if defined(TALVIR_BUILDING_LIBRARY)
#define TALVIR_API __declspec(dllexport)
#else
#define TALVIR_API __declspec(dllimport)
#endif
#else
#define TALVIR_API __attribute__((visibility("default")))
#endif
