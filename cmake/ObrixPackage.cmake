# Debian packages from the install rules (`cpack -G DEB` in a build folder, or the `package`
# target): libobrixbase0 with the shared libraries, obrixbase-helpers with the helper programs
# they start, and libobrixbase-dev with everything a consumer compiles against, tied to that
# exact runtime. The helpers are a package of their own because they bring the heavy
# dependencies (GTK for the warning box, SQLite and hiredis for the cache server): a program
# that shows no warnings and keeps no file cache, a batch tool on a server say, installs the
# libraries alone. The helper programs go to <prefix>/bin, the program folder that an
# installed libBase looks in (qvOS::AppMain::getBinaryPath: ../bin from the library folder).
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
set(CPACK_COMPONENTS_ALL Runtime Helpers Development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libobrixbase${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Foundation library for surface-modelling applications: shared libraries\n\
libBase and libObrixBase. The programs they start (the file cache server, the\n\
warning box, the trace reader) are in obrixbase-helpers.")
# Depends from the libraries the files really link (libc, libstdc++), and a shlibs file plus
# the loader-cache trigger for the two libraries. Without the helpers the libraries work and
# say so where a helper is wanted (a warning is answered VK_WARNING_FAILED and reported with
# rptError; FileCache::initialize returns the error of the server it could not start): the
# helpers are recommended, not required.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "obrixbase-helpers (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_HELPERS_PACKAGE_NAME obrixbase-helpers)
set(CPACK_DEBIAN_HELPERS_PACKAGE_SECTION misc)
set(CPACK_COMPONENT_HELPERS_DESCRIPTION
    "Foundation library for surface-modelling applications: helper programs\n\
The programs libobrixbase0 starts: the file cache server qvcached, the warning\n\
box veskoWarning and the trace reader veskoTraceDump.")
# The system libraries from what the programs link (SQLite, hiredis, GTK); the two of this
# project from the exact runtime they were built with.
set(CPACK_DEBIAN_HELPERS_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps looks for every library a program links; this project's two sit in the
# runtime's package, so it is shown them in the build tree (and takes them for private ones).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}/Base;${PROJECT_BINARY_DIR}/ObrixBase")
set(CPACK_DEBIAN_HELPERS_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")

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
foreach(component Runtime Helpers Development)
  string(TOUPPER ${component} upper)
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
          RENAME copyright COMPONENT ${component})
endforeach()

include(CPack)
