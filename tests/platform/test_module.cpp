// A tiny module with one exported C function, loaded by the platform tests.
extern "C" __attribute__((visibility("default"))) int TalvirTestModuleAnswer() { return 42; }
