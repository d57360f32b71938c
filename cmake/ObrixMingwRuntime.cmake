# A mingw-w64 build's programs and DLLs load the GCC runtime DLLs. A copy of them in bin/ lets
# that folder run as it is, under Wine or on Windows, and keeps one C++ runtime per process:
# linking it statically would give every DLL its own copy of the runtime's state (thread keys,
# locale ids, the exception machinery).
set(OBRIX_MINGW_RUNTIME_DLLS "")
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                  OUTPUT_VARIABLE dll_path OUTPUT_STRIP_TRAILING_WHITESPACE)
  # The compiler echoes the bare name back when it has no such file.
  if(NOT IS_ABSOLUTE "${dll_path}" OR NOT EXISTS "${dll_path}")
    message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${dll}")
  endif()
  file(REAL_PATH "${dll_path}" dll_path)
  list(APPEND OBRIX_MINGW_RUNTIME_DLLS "${dll_path}")
endforeach()
file(COPY ${OBRIX_MINGW_RUNTIME_DLLS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
