#pragma once
// Export control for the CLProtocol shared library (libCLProtocol.so).
#if defined(_WIN32)
#if defined(CLPROTOCOL_BUILDING_LIBRARY)
#define CLPROTOCOL_API __declspec(dllexport)
#else
#define CLPROTOCOL_API __declspec(dllimport)
#endif
#else
#define CLPROTOCOL_API __attribute__((visibility("default")))
#endif
