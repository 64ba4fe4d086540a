# Run by ctest (see CMakeLists.txt): cmake -DBUILD_DIR=.. -DSOURCE_DIR=.. -DWORK_DIR=.. [...] -P InstalledExamples.cmake
cmake_minimum_required(VERSION 3.25)

function(run)
  cmake_parse_arguments(R "" "EXPECT;OUTPUT_VARIABLE;ERROR_VARIABLE" "COMMAND;ENVIRONMENT" ${ARGN})
  if(R_ENVIRONMENT)
    set(command ${CMAKE_COMMAND} -E env ${R_ENVIRONMENT} ${R_COMMAND})
  else()
    set(command ${R_COMMAND})
  endif()
  execute_process(COMMAND ${command} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err
                  TIMEOUT 300)
  if(NOT R_EXPECT)
    set(R_EXPECT 0)
  endif()
  if(NOT "${result}" STREQUAL "${R_EXPECT}")
    message(FATAL_ERROR "'${R_COMMAND}' exited with ${result}, expected ${R_EXPECT}\n--- stdout\n${out}\n--- stderr\n${err}")
  endif()
  if(R_OUTPUT_VARIABLE)
    set(${R_OUTPUT_VARIABLE} "${out}" PARENT_SCOPE)
  endif()
  if(R_ERROR_VARIABLE)
    set(${R_ERROR_VARIABLE} "${err}" PARENT_SCOPE)
  endif()
endfunction()

function(expect_match text pattern what)
  if(NOT "${text}" MATCHES "${pattern}")
    message(FATAL_ERROR "${what}: '${pattern}' not found in:\n${text}")
  endif()
endfunction()

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

# 1. Install: everything by default; without producers the command line says so in one line. Then the optional
#    simulated producers.
run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(command "discover" "grab")
  run(COMMAND ${prefix}/bin/talvir-cli ${command} EXPECT 1 OUTPUT_VARIABLE out ERROR_VARIABLE err)
  expect_match("${err}" "^talvir-cli: (no camera found: )?no producers: there is no \\.cti file beside the library in [^\n]*\n$"
               "talvir-cli ${command} without producers")
endforeach()
run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} --component Producers)
file(GLOB libdirs LIST_DIRECTORIES true ${prefix}/lib ${prefix}/lib64 ${prefix}/lib/*-linux-gnu)
foreach(dir ${libdirs})
  if(EXISTS ${dir}/libTalvir.so)
    set(libdir ${dir})
  endif()
endforeach()
if(NOT libdir)
  message(FATAL_ERROR "libTalvir.so was not installed under ${prefix}")
endif()
foreach(file include/talvir/Talvir.h include/talvir/ICamera.h include/GenApi/GenApi.h include/GenApi/Persistence.h
             include/GenTL/GenTL.h include/GCBase/GCBase.h bin/talvir-cli bin/genicam-inspect)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "${file} was not installed")
  endif()
endforeach()
foreach(file libgenicam.so TalvirSim.cti U3VTLTAV.cti TalvirSimGEVTL.cti cmake/Talvir/TalvirConfig.cmake
             cmake/Talvir/TalvirConfigVersion.cmake cmake/Talvir/TalvirTargets.cmake pkgconfig/talvir.pc
             pkgconfig/genicam.pc)
  if(NOT EXISTS ${libdir}/${file})
    message(FATAL_ERROR "${file} was not installed in ${libdir}")
  endif()
endforeach()
if(EXISTS ${libdir}/TalvirSimNoQueue.cti)
  message(FATAL_ERROR "the fault variants of the simulated producer are for the tests only, not to be installed")
endif()

# 2. pkg-config finds both libraries in the prefix.
find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
  run(COMMAND ${PKG_CONFIG} --cflags --libs talvir ENVIRONMENT PKG_CONFIG_PATH=${libdir}/pkgconfig
      OUTPUT_VARIABLE flags)
  expect_match("${flags}" "-lTalvir" "pkg-config talvir")
  expect_match("${flags}" "-lgenicam" "pkg-config talvir (through genicam)")
  expect_match("${flags}" "-I[^ ]*prefix/lib/pkgconfig/../../include|-I${prefix}/include" "pkg-config include folder")
endif()

# 3. The examples, configured and built against the prefix only.
set(configure ${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples -B ${WORK_DIR}/build -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
if(CXX_LAUNCHER)
  list(APPEND configure -DCMAKE_CXX_COMPILER_LAUNCHER=${CXX_LAUNCHER})
endif()
run(COMMAND ${configure})
run(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build -j 2)

# 4. Run them against the simulated producers beside the installed library.
set(bin ${WORK_DIR}/build)
run(COMMAND ${bin}/discover OUTPUT_VARIABLE out)
expect_match("${out}" "SIM00001" "discover")
expect_match("${out}" "U3VTLTAV.cti" "discover")
run(COMMAND ${bin}/genicam_offline ${SOURCE_DIR}/producers/sim/xml/remote.xml OUTPUT_VARIABLE out)
expect_match("${out}" "Talvir SimCamera" "genicam_offline")
run(COMMAND ${bin}/features SIM00001 OUTPUT_VARIABLE out)
expect_match("${out}" "lines loaded back, 0 refused" "features")
run(COMMAND ${bin}/grab_and_save SIM00002 ${WORK_DIR}/last.pnm OUTPUT_VARIABLE out)
expect_match("${out}" "saved as" "grab_and_save")
file(READ ${WORK_DIR}/last.pnm header LIMIT 2)
expect_match("${header}" "P6" "grab_and_save writes a colour image for the colour camera")
run(COMMAND ${bin}/events_and_device_lost GEV00001 OUTPUT_VARIABLE out)
expect_match("${out}" "device lost" "events_and_device_lost")

# 5. The installed command line finds its library and the producers through its relative run path.
run(COMMAND ${prefix}/bin/talvir-cli discover --type 0x2 OUTPUT_VARIABLE out)
expect_match("${out}" "U3V00002" "installed talvir-cli")
run(COMMAND ${prefix}/bin/talvir-cli grab --serial U3V00002 --count 5 --save ${WORK_DIR}/cli.png OUTPUT_VARIABLE out)
expect_match("${out}" "5 frames" "installed talvir-cli grab")

file(REMOVE_RECURSE ${WORK_DIR})
message(STATUS "installed package: examples built and run from ${prefix}")
