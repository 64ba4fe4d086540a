# Build options: sanitizers, warnings, what to build.
option(TALVIR_BUILD_TESTS "Build the tests" ON)
option(TALVIR_BUILD_BENCHMARKS "Build the benchmarks" ON)
option(TALVIR_BUILD_FUZZERS "Build the libFuzzer targets (needs clang)" OFF)
if(CMAKE_CROSSCOMPILING_EMULATOR)
  option(TALVIR_TEST_PROGRAMS_WHOLE "Register each test program as one ctest test instead of one per test" ON)
else()
  option(TALVIR_TEST_PROGRAMS_WHOLE "Register each test program as one ctest test instead of one per test" OFF)
endif()
set(TALVIR_SANITIZER "" CACHE STRING "Sanitizer build: empty, address (ASan + UBSan) or thread (TSan)")
set_property(CACHE TALVIR_SANITIZER PROPERTY STRINGS "" address thread)

if(TALVIR_SANITIZER STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(TALVIR_SANITIZER STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT TALVIR_SANITIZER STREQUAL "")
  message(FATAL_ERROR "TALVIR_SANITIZER must be empty, address or thread, not '${TALVIR_SANITIZER}'")
endif()

# Warnings as errors for our own code only; third-party headers come in as SYSTEM includes.
if(MSVC)
  # A native Windows build with Microsoft's compiler (not built by CI: see the README).
  set(TALVIR_WARNINGS /W4 /WX /permissive- /utf-8)
  set(TALVIR_C_WARNINGS /W4 /WX)
else()
  set(TALVIR_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual
      -Wnull-dereference -Wformat=2 -Wimplicit-fallthrough -Werror)
  set(TALVIR_C_WARNINGS -Wall -Wextra -Werror)
endif()

# Modules must resolve every symbol when they are linked, not when a consumer loads them.
if(MSVC)
  set(TALVIR_NO_UNDEFINED "")
else()
  set(TALVIR_NO_UNDEFINED -Wl,--no-undefined)
endif()

function(talvir_warnings target)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${TALVIR_WARNINGS}>
                                           $<$<COMPILE_LANGUAGE:C>:${TALVIR_C_WARNINGS}>)
endfunction()
