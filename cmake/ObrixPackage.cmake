# Debian packages from the install rules (`cpack -G DEB` in a build folder, or the `package`
# target): libobrixbase0 with the shared libraries and the helper programs they start, and
# libobrixbase-dev with everything a consumer compiles against, tied to that exact runtime.
# The helper programs go to <prefix>/bin, the program folder that an installed libBase looks
# in (qvOS::AppMain::getBinaryPath: ../bin from the library folder).
if(WIN32)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME obrixbase)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(OBRIX_PACKAGE_CONTACT "ObrixBase developers <obrixbase@localhost>" CACHE STRING
    "Maintainer field of the Debian packages")
set(CPACK_PACKAGE_CONTACT "${OBRIX_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libobrixbase${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Foundation library for surface-modelling applications: shared libraries\n\
libBase and libObrixBase with the helper programs they start: the file cache\n\
server qvcached, the warning box veskoWarning and the trace reader\n\
veskoTraceDump.")
# Depends from the libraries the files really link (libc, libstdc++, SQLite, GTK for the
# warning box), and a shlibs file plus the loader-cache trigger for the two libraries.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libobrixbase-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Foundation library for surface-modelling applications: development files\n\
Headers (C11 and C++20), the CMake package (find_package(ObrixBase)), the\n\
pkg-config files obrixbase and obrixbase-c, and GDB pretty-printers for the\n\
numeric and geometry classes and DS_Structure.")
# The headers' link names point at one exact build of the runtime. No installed header
# includes Boost (libBase keeps Boost.Signals2 inside), so consumers need only a C++20 compiler.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "gdb, pkg-config, cmake (>= 3.25)")

# Every Debian package carries its licence as /usr/share/doc/<package>/copyright.
foreach(component Runtime Development)
  string(TOUPPER ${component} upper)
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
          RENAME copyright COMPONENT ${component})
endforeach()

include(CPack)
