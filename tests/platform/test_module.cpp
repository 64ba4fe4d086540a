// A tiny module with one exported C function, loaded by the platform tests.
#ifdef _WIN32
#define TALVIR_TEST_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define TALVIR_TEST_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

TALVIR_TEST_MODULE_EXPORT int TalvirTestModuleAnswer() { return 42; }
