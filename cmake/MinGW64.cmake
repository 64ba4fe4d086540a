# Cross build for 64-bit Windows with Debian's MinGW-w64 compilers. The "-posix" compilers give std::thread,
# std::mutex and timed condition-variable waits. Programs built here run under Wine, through scripts/wine-run.sh.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TALVIR_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TALVIR_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TALVIR_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${TALVIR_MINGW_TRIPLET}-windres)
set(CMAKE_DLLTOOL ${TALVIR_MINGW_TRIPLET}-dlltool)

# Libraries, headers and packages come from the target's own tree only; build tools come from the host.
set(CMAKE_FIND_ROOT_PATH /usr/${TALVIR_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest, test discovery and custom commands run target programs through Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
