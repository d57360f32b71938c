# Warnings and sanitizers for every target of the project, applied through one
# interface target so that tests, benchmarks and programs build the same way.
add_library(obrix_build_flags INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  target_compile_options(obrix_build_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow
    $<$<BOOL:${OBRIX_WERROR}>:-Werror>)
  if(OBRIX_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
  endif()
elseif(MSVC)
  target_compile_options(obrix_build_flags INTERFACE /W4 $<$<BOOL:${OBRIX_WERROR}>:/WX>)
endif()
