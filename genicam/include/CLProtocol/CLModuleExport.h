#pragma once
// Marks the plain C functions that a Camera Link serial library or protocol driver exports: the CLProtocol layer
// resolves them by these names at run time.
#if defined(_WIN32)
#define CL_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define CL_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif
