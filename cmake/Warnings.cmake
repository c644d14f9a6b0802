# Strict warnings for the project's own code only (never for the VST 3 SDK).
function(aaxw_strict_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

# Adds a folder only once it has a CMakeLists.txt, so every area can be
# configured while its neighbours are still being written.
macro(aaxw_optional_subdirectory dir)
  if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${dir}/CMakeLists.txt")
    add_subdirectory(${dir})
  endif()
endmacro()
