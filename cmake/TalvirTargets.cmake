# Helpers that give every test and benchmark the same shape.
#
#   talvir_add_test(NAME n SOURCES a.cpp ... [LIBS l ...] [LABELS unit|integration ...] [DEPENDS t ...])
#     a GoogleTest program, its tests registered one by one with ctest under the given labels.
#     DEPENDS names targets the tests load at run time (producers, test doubles) so they are built first.
#     A program named in TALVIR_THREADED_TESTS gets its label with "-threads" appended and joins threaded_tests.
#     With TALVIR_TEST_PROGRAMS_WHOLE (the default when an emulator runs the programs: Wine), each program is one ctest
#     test that runs all its tests in one process: starting the emulator costs more than most tests, and listing the
#     tests at build time would start it once more per program.
#   talvir_add_bench(NAME n SOURCES a.cpp ... [LIBS l ...])
#     a Google Benchmark program; built by default, never run by ctest.
function(talvir_add_test)
  cmake_parse_arguments(T "" "NAME" "SOURCES;LIBS;LABELS;DEPENDS" ${ARGN})
  if(NOT T_LABELS)
    set(T_LABELS unit)
  endif()
  add_executable(${T_NAME} ${T_SOURCES})
  # Programs that exercise threads carry their label with "-threads" appended ("unit-threads"): ctest takes -L as a
  # regular expression, so -L unit still selects them and -L threads selects only them. One label each, because
  # the test discovery cannot pass a list-valued property. The ThreadSanitizer run builds and runs only these.
  if(T_NAME IN_LIST TALVIR_THREADED_TESTS)
    list(TRANSFORM T_LABELS APPEND "-threads")
    add_dependencies(threaded_tests ${T_NAME})
  endif()
  target_link_libraries(${T_NAME} PRIVATE ${T_LIBS} GTest::gmock GTest::gtest_main Threads::Threads)
  target_compile_definitions(${T_NAME} PRIVATE TALVIR_SHARED_DIR="${TALVIR_SHARED_DIR}"
                                               TALVIR_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
                                               TALVIR_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  talvir_warnings(${T_NAME})
  if(T_DEPENDS)
    add_dependencies(${T_NAME} ${T_DEPENDS})
  endif()
  if(TALVIR_TEST_PROGRAMS_WHOLE)
    add_test(NAME ${T_NAME} COMMAND ${T_NAME} WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    set_tests_properties(${T_NAME} PROPERTIES LABELS "${T_LABELS}")
  else()
    gtest_discover_tests(${T_NAME} PROPERTIES LABELS "${T_LABELS}" DISCOVERY_TIMEOUT 60
                         WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  endif()
endfunction()

function(talvir_add_bench)
  cmake_parse_arguments(B "" "NAME" "SOURCES;LIBS;DEPENDS" ${ARGN})
  add_executable(${B_NAME} ${B_SOURCES})
  target_link_libraries(${B_NAME} PRIVATE ${B_LIBS} benchmark::benchmark Threads::Threads)
  target_compile_definitions(${B_NAME} PRIVATE TALVIR_SHARED_DIR="${TALVIR_SHARED_DIR}"
                                               TALVIR_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  talvir_warnings(${B_NAME})
  if(B_DEPENDS)
    add_dependencies(${B_NAME} ${B_DEPENDS})
  endif()
endfunction()

# Adds every direct subfolder of the current folder that has a CMakeLists.txt, so that each area owns its own list.
function(talvir_add_subfolders)
  file(GLOB children LIST_DIRECTORIES true RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/*)
  list(SORT children)
  foreach(child ${children})
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${child}/CMakeLists.txt)
      add_subdirectory(${child})
    endif()
  endforeach()
endfunction()
