#pragma once
// Export control for the CLProtocol shared library (libCLProtocol.so, CLProtocol.dll). Modules that compile the
// shared helpers (status texts, baud-rate bits, device IDs) into themselves, such as the protocol driver and the
// serial libraries, define CLPROTOCOL_OWN_COPY: the helpers are then their own, neither imported nor exported.
#if defined(CLPROTOCOL_OWN_COPY)
#define CLPROTOCOL_API
#elif defined(_WIN32)
#if defined(CLPROTOCOL_BUILDING_LIBRARY)
#define CLPROTOCOL_API __declspec(dllexport)
#else
#define CLPROTOCOL_API __declspec(dllimport)
#endif
#else
#define CLPROTOCOL_API __attribute__((visibility("default")))
#endif
