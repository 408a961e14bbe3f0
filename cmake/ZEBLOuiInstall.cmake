# Install rules for libZEBLOui, included by the top-level CMakeLists.txt.
#
#   lib/libZEBLOui.so*                        the library (SONAME links on Linux)
#   lib/zeblo/simulated/libZEBLOui.so*        the simulated library (same exports;
#                                             its desktop comes from ZEBLO_SIMULATE)
#   include/zeblo/zeblo.h                     its interface
#   lib/libZEBLOuiPlus.so*                    the superset library (the 25 functions and
#                                             the element interface, zeblo/zeblo_plus.h)
#   lib/zeblo/simulated/libZEBLOuiPlus.so*    its simulated twin
#   include/zeblo/module.modulemap            the module ZEBLOui, for Swift
#   lib/cmake/ZEBLOui/ZEBLOui*.cmake          find_package(ZEBLOui) -> ZEBLOui::ZEBLOui
#   lib/pkgconfig/zeblo.pc                    pkg-config zeblo
#   bin/zeblo                                 the command-line tool
#   libexec/zeblo/zeblo-helper                the library's helper process (Linux)
#
# The library's dependencies (ICU, AT-SPI2, X11, nlohmann-json) stay private:
# a consumer compiles against the C header alone and links the library alone.
include(CMakePackageConfigHelpers)

set(ZEBLO_CMAKE_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ZEBLOui")

install(TARGETS ZEBLOui ZEBLOuiPlus EXPORT ZEBLOuiTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT Runtime NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Development
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT Runtime)
# Not part of the exported CMake package: a host's tests reach it through
# the library search path (LD_LIBRARY_PATH, DYLD_LIBRARY_PATH) or by its path.
install(TARGETS ZEBLOui_simulated ZEBLOuiPlus_simulated
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/zeblo/simulated" COMPONENT Simulated
  RUNTIME DESTINATION "${CMAKE_INSTALL_LIBDIR}/zeblo/simulated" COMPONENT Simulated)
install(FILES "${PROJECT_SOURCE_DIR}/include/zeblo/zeblo.h" "${PROJECT_SOURCE_DIR}/include/zeblo/zeblo_plus.h"
  "${PROJECT_SOURCE_DIR}/include/zeblo/module.modulemap"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zeblo" COMPONENT Development)
install(TARGETS zeblo RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT Tool)
if(TARGET zeblo-helper)
  # Found by the library from its own directory (src/platform/linux/detach.h).
  install(TARGETS zeblo-helper RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/zeblo" COMPONENT Runtime)
endif()

install(EXPORT ZEBLOuiTargets
  NAMESPACE ZEBLOui::
  DESTINATION "${ZEBLO_CMAKE_INSTALL_DIR}"
  COMPONENT Development)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/ZEBLOuiConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/ZEBLOuiConfig.cmake"
  INSTALL_DESTINATION "${ZEBLO_CMAKE_INSTALL_DIR}")
# ZEBLO_VERSION_COMPATIBILITY: the same minor version while the major is 0,
# the same major version from 1.0 (see the library's SOVERSION).
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZEBLOuiConfigVersion.cmake"
  VERSION "${PROJECT_VERSION}"
  COMPATIBILITY ${ZEBLO_VERSION_COMPATIBILITY})
install(FILES
  "${PROJECT_BINARY_DIR}/ZEBLOuiConfig.cmake"
  "${PROJECT_BINARY_DIR}/ZEBLOuiConfigVersion.cmake"
  DESTINATION "${ZEBLO_CMAKE_INSTALL_DIR}"
  COMPONENT Development)

# zeblo.pc finds the prefix from its own place (${pcfiledir}), so the installed
# tree works under any prefix, including one given to `cmake --install --prefix`.
# Absolute library and include directories are written as they are.
file(RELATIVE_PATH ZEBLO_PC_TO_PREFIX
  "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" ZEBLO_PC_TO_PREFIX "${ZEBLO_PC_TO_PREFIX}")
foreach(kind LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
    set(ZEBLO_PC_${kind} "${CMAKE_INSTALL_${kind}}")
  else()
    set(ZEBLO_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
  endif()
endforeach()
configure_file("${PROJECT_SOURCE_DIR}/cmake/zeblo.pc.in" "${PROJECT_BINARY_DIR}/zeblo.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zeblo.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
  COMPONENT Development)
