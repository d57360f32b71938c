# The API reference (target `docs`, HTML in <build>/docs/api/html) and, in a build with tests,
# the api_reference test: doxygen over the public headers with every warning an error, so a
# public declaration without a contract fails ./test.sh. Doxygen runs on the build machine
# and reads only sources, so a cross build leaves both to the native one.
if(CMAKE_CROSSCOMPILING)
  return()
endif()
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  message(STATUS "doxygen not found: no `docs` target and no api_reference test "
                 "(scripts/deps.sh docs installs it)")
  return()
endif()

set(OBRIX_DOX_OUTPUT ${PROJECT_BINARY_DIR}/docs/api)
configure_file(${PROJECT_SOURCE_DIR}/docs/api/Doxyfile.in ${PROJECT_BINARY_DIR}/docs/Doxyfile
               @ONLY)
add_custom_target(docs
  COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/docs/Doxyfile
  WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
  COMMENT "API reference in ${OBRIX_DOX_OUTPUT}/html"
  VERBATIM)

if(OBRIX_BUILD_TESTS)
  # The same run as the target (about a second): its pages go to a folder of its own.
  set(OBRIX_DOX_OUTPUT ${PROJECT_BINARY_DIR}/docs/api-check)
  configure_file(${PROJECT_SOURCE_DIR}/docs/api/Doxyfile.in
                 ${PROJECT_BINARY_DIR}/docs/Doxyfile-check @ONLY)
  add_test(NAME api_reference
           COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/docs/Doxyfile-check)
  set_tests_properties(api_reference PROPERTIES TIMEOUT 120)
endif()
