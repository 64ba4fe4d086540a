# Third-party code for the Windows build. XML, INI, serial ports and pictures use Windows components (XmlLite,
# GetPrivateProfileStringA, SetupAPI, WIC); the benchmarks are left out.
# - Cross build from Debian (MinGW-w64): Debian ships zlib for the target; the header-only libraries are the host's
#   own headers, staged alone so that no other host header can leak into the target build; GoogleTest is built from
#   the sources Debian installs.
# - Native build (Microsoft's compiler, or MinGW on Windows): zlib, nlohmann-json, CLI11 and GoogleTest come from a
#   package manager's CMake packages (vcpkg: zlib nlohmann-json cli11 gtest, with its toolchain file).
set(TALVIR_BUILD_BENCHMARKS OFF CACHE BOOL "Build the benchmarks" FORCE)
if(NOT CMAKE_CROSSCOMPILING)
  find_package(ZLIB REQUIRED)
  find_package(nlohmann_json 3 REQUIRED)
  find_package(CLI11 REQUIRED)
  if(TALVIR_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
  endif()
  return()
endif()

set(ZLIB_USE_STATIC_LIBS ON)
find_package(ZLIB REQUIRED)

set(TALVIR_STAGED_INCLUDE ${CMAKE_BINARY_DIR}/staged-include)
function(talvir_stage_headers target folder)
  if(NOT EXISTS /usr/include/${folder})
    message(FATAL_ERROR "/usr/include/${folder} is missing: run scripts/setup.sh --windows")
  endif()
  file(COPY /usr/include/${folder} DESTINATION ${TALVIR_STAGED_INCLUDE})
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${TALVIR_STAGED_INCLUDE})
endfunction()
talvir_stage_headers(nlohmann_json::nlohmann_json nlohmann)
talvir_stage_headers(CLI11::CLI11 CLI)

# The compiler's run-time DLLs go beside the programs, as they would on a Windows machine without MinGW installed.
foreach(runtime libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime} OUTPUT_VARIABLE runtime_path
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT EXISTS "${runtime_path}")
    message(FATAL_ERROR "The compiler does not know ${runtime}")
  endif()
  file(COPY ${runtime_path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  list(APPEND TALVIR_RUNTIME_DLLS ${runtime_path})
endforeach()
set(TALVIR_RUNTIME_DLLS ${TALVIR_RUNTIME_DLLS} CACHE INTERNAL "MinGW run-time DLLs shipped with the programs")

if(TALVIR_BUILD_TESTS)
  if(NOT EXISTS /usr/src/googletest/CMakeLists.txt)
    message(FATAL_ERROR "/usr/src/googletest is missing: run scripts/setup.sh --windows")
  endif()
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  # GoogleTest's own build defines the GTest:: aliases.
  include(GoogleTest)
endif()
