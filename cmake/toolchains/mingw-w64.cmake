# Cross-builds for 64-bit Windows with Debian's mingw-w64 (posix thread model, so std::thread
# and std::mutex work) and lets ctest run the results under Wine.
#
# Libraries, headers and CMake packages come only from the mingw root and from the optional
# private prefix OBRIX_MINGW_PREFIX (where scripts/test-windows.sh installs GoogleTest), so
# nothing of the host's /usr/include or /usr/lib leaks into a Windows build.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(OBRIX_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${OBRIX_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${OBRIX_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${OBRIX_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${OBRIX_MINGW_TRIPLET})
if(OBRIX_MINGW_PREFIX)
  list(APPEND CMAKE_FIND_ROOT_PATH ${OBRIX_MINGW_PREFIX})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest and gtest_discover_tests run every .exe through this.
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

# Boost is used header-only. The host's /usr/include must not become an include directory of
# the cross compiler, so Boost is offered through a directory that holds nothing but a link to
# the host's Boost headers. The host's BoostConfig.cmake describes a Linux build: keep it out.
get_property(obrix_in_try_compile GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT obrix_in_try_compile AND EXISTS /usr/include/boost/version.hpp)
  set(obrix_boost_only ${CMAKE_BINARY_DIR}/mingw-boost-headers)
  if(NOT EXISTS ${obrix_boost_only}/boost)
    file(MAKE_DIRECTORY ${obrix_boost_only})
    file(CREATE_LINK /usr/include/boost ${obrix_boost_only}/boost SYMBOLIC)
  endif()
  set(Boost_INCLUDE_DIR ${obrix_boost_only} CACHE PATH "Boost headers for the cross build")
  set(Boost_NO_BOOST_CMAKE ON)
endif()
