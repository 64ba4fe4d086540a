# What "cmake --install" puts where, the CMake package and pkg-config files, and the Debian package (cpack).
#
#   lib/libTalvir.so, lib/libgenicam.so         the library and our GenICam layer       (component Runtime)
#   include/talvir, include/GenApi|GCBase|GenTL  their headers                           (component Development)
#   lib/cmake/Talvir, lib/pkgconfig              find_package(Talvir), pkg-config talvir (component Development)
#   bin/talvir-cli, bin/genicam-inspect          the tools                               (component Tools)
#   lib/*.cti                                    the simulated producers, beside the library where discovery looks
#                                                (component Producers, optional: cmake --install --component)
# On Windows every DLL goes to bin (Talvir.dll, genicam.dll, the MinGW run-time DLLs), and so do the modules that must
# sit beside it: producers, serial libraries and the CLProtocol/Win64_x64 driver folder. cpack makes a ZIP there.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TALVIR_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/Talvir)
if(WIN32)
  set(TALVIR_INSTALL_MODULEDIR ${CMAKE_INSTALL_BINDIR})
  set(TALVIR_DRIVER_FOLDER Win64_x64)
  install(FILES ${TALVIR_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)
else()
  set(TALVIR_INSTALL_MODULEDIR ${CMAKE_INSTALL_LIBDIR})
  set(TALVIR_DRIVER_FOLDER Linux64_x64)
endif()

# Installed targets find their include folders under the prefix; in the build tree they keep the source folders.
set_target_properties(gentl_headers PROPERTIES INTERFACE_INCLUDE_DIRECTORIES
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/genicam/include>;$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
if(TARGET genicam)
  get_target_property(genicam_type genicam TYPE)
  if(NOT genicam_type STREQUAL "INTERFACE_LIBRARY")
    set_target_properties(genicam PROPERTIES INTERFACE_INCLUDE_DIRECTORIES
      "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/genicam/include>;$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  endif()
endif()
target_include_directories(Talvir PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# Installed programs and the library find their neighbours relative to themselves, wherever the prefix is.
set_target_properties(Talvir genicam PROPERTIES INSTALL_RPATH "$ORIGIN")
foreach(tool talvir-cli genicam-inspect)
  if(TARGET ${tool})
    set_target_properties(${tool} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Tools)
  endif()
endforeach()

install(TARGETS Talvir genicam gentl_headers EXPORT TalvirTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)
# The Camera Link serial link: the CLProtocol layer the library uses, our GenCP-over-serial driver in the driver folder
# the library looks in beside itself, and the serial library for the PC's own ports.
if(TARGET CLProtocol)
  set_target_properties(CLProtocol PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS CLProtocol LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime
          RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
endif()
if(TARGET TavCLProtocolGenCP)
  install(TARGETS TavCLProtocolGenCP LIBRARY DESTINATION ${TALVIR_INSTALL_MODULEDIR}/CLProtocol/${TALVIR_DRIVER_FOLDER}
          COMPONENT Runtime)
endif()
if(TARGET clsertav)
  install(TARGETS clsertav LIBRARY DESTINATION ${TALVIR_INSTALL_MODULEDIR} COMPONENT Runtime)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/talvir DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/genicam/include/GCBase ${PROJECT_SOURCE_DIR}/genicam/include/GenApi
                  ${PROJECT_SOURCE_DIR}/genicam/include/GenTL
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)

install(EXPORT TalvirTargets NAMESPACE Talvir:: DESTINATION ${TALVIR_INSTALL_CMAKEDIR} COMPONENT Development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/install/TalvirConfig.cmake.in
  ${CMAKE_BINARY_DIR}/install/TalvirConfig.cmake INSTALL_DESTINATION ${TALVIR_INSTALL_CMAKEDIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/install/TalvirConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/install/TalvirConfig.cmake ${CMAKE_BINARY_DIR}/install/TalvirConfigVersion.cmake
        DESTINATION ${TALVIR_INSTALL_CMAKEDIR} COMPONENT Development)

# pkg-config files: paths relative to the .pc file, so that a moved prefix still works.
string(REGEX REPLACE "[^/]+" ".." TALVIR_PC_TO_PREFIX "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
foreach(pc talvir genicam)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/install/${pc}.pc.in ${CMAKE_BINARY_DIR}/install/${pc}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/install/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT Development)
endforeach()

# The simulated producers: the module under each flavour's name (not the fault variants, which only tests want).
if(TARGET TalvirSim)
  install(TARGETS TalvirSim LIBRARY DESTINATION ${TALVIR_INSTALL_MODULEDIR} COMPONENT Producers EXCLUDE_FROM_ALL)
  if(TARGET talvir_sim_helper)
    install(TARGETS talvir_sim_helper LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} RUNTIME DESTINATION
            ${CMAKE_INSTALL_BINDIR} COMPONENT Producers EXCLUDE_FROM_ALL)
  endif()
  get_directory_property(sim_flavours DIRECTORY ${PROJECT_SOURCE_DIR}/producers/sim DEFINITION TALVIR_SIM_FLAVOURS)
  foreach(flavour ${sim_flavours})
    install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${flavour} DESTINATION ${TALVIR_INSTALL_MODULEDIR}
            COMPONENT Producers EXCLUDE_FROM_ALL)
  endforeach()
endif()

# cpack: one Debian package with the library, headers, CMake and pkg-config files and tools (not the simulated
# producers, which an application installs on purpose with "cmake --install <build> --component Producers").
set(CPACK_PACKAGE_NAME talvir)
set(CPACK_PACKAGE_VENDOR "Talvir")
set(CPACK_PACKAGE_CONTACT "Talvir developers <talvir@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Camera access library (GenTL consumer) with its own GenICam node-map engine")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB)
endif()
set(CPACK_COMPONENTS_ALL Runtime Development Tools)
set(CPACK_DEB_COMPONENT_INSTALL OFF)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)
