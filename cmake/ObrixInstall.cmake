# Install rules, the CMake package (find_package(ObrixBase) -> ObrixBase::ObrixBase)
# and the pkg-config file. Three components, one per Debian package (cmake/ObrixPackage.cmake):
# Runtime (the shared libraries), Helpers (the helper programs the libraries start, which pull
# in GTK, SQLite and hiredis) and Development (headers, link names, the CMake and pkg-config
# files, the debugger's printers).
include(CMakePackageConfigHelpers)

install(TARGETS Base ObrixBase EXPORT ObrixBaseTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime
                NAMELINK_COMPONENT Development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(MINGW)
  install(FILES ${OBRIX_MINGW_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR}
          COMPONENT Runtime)
endif()

# Public headers keep their repository paths; *_internal.h stay private.
foreach(tree Base ObrixBase)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${tree} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
          COMPONENT Development FILES_MATCHING PATTERN "*.h"
          PATTERN "*_internal.h" EXCLUDE)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/generated/ObrixBase/ObrixBuildOptions.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ObrixBase COMPONENT Development)

install(EXPORT ObrixBaseTargets NAMESPACE ObrixBase::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ObrixBase COMPONENT Development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ObrixBaseConfig.cmake.in
  ${PROJECT_BINARY_DIR}/ObrixBaseConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ObrixBase)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ObrixBaseConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ObrixBaseConfig.cmake
              ${PROJECT_BINARY_DIR}/ObrixBaseConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ObrixBase COMPONENT Development)

# The .pc file finds its prefix from its own place, so an installed tree can be moved.
file(RELATIVE_PATH OBRIX_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" OBRIX_PC_TO_PREFIX "${OBRIX_PC_TO_PREFIX}")
# Two files from one template: the C++ headers need C++20, which a C compiler refuses as an
# option, so C callers take obrixbase-c (the same library and include path, no language flag).
set(OBRIX_PC_FOR " (C++ callers)")
set(OBRIX_PC_STD "-std=c++20 ")
configure_file(${PROJECT_SOURCE_DIR}/cmake/obrixbase.pc.in
               ${PROJECT_BINARY_DIR}/obrixbase.pc @ONLY)
set(OBRIX_PC_FOR " (C callers)")
set(OBRIX_PC_STD "")
configure_file(${PROJECT_SOURCE_DIR}/cmake/obrixbase.pc.in
               ${PROJECT_BINARY_DIR}/obrixbase-c.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/obrixbase.pc ${PROJECT_BINARY_DIR}/obrixbase-c.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)

# The debugger's printers for the numeric and geometry classes and DS_Structure. GDB loads a
# script named after the library's real file from <datadir>/gdb/auto-load/<library's folder>
# by itself when that is its own data folder (a /usr install, the Debian package); from any
# other prefix, `source` it (README). The folder part is the install-time prefix, written
# unexpanded so that `cmake --install --prefix` and the packages get their own.
if(NOT WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/gdb/obrixbase_printers.py
          DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
          RENAME libObrixBase.so.${PROJECT_VERSION}-gdb.py
          COMPONENT Development)
endif()
