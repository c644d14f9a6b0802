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

# Adds every sub-folder that has a CMakeLists.txt: tests/, examples/, bench/
# and fuzz/ are collections of self-contained areas.
function(aaxw_add_area_subdirectories)
  file(GLOB _children LIST_DIRECTORIES true RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}/*")
  list(SORT _children)
  foreach(_child IN LISTS _children)
    if(IS_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/${_child}" AND EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${_child}/CMakeLists.txt")
      add_subdirectory(${_child})
    endif()
  endforeach()
endfunction()
