# Applied to the whole build, so that plug-ins loaded into a sanitized host
# are instrumented the same way.
if(AAXW_SANITIZER STREQUAL "asan")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(AAXW_SANITIZER STREQUAL "tsan")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT AAXW_SANITIZER STREQUAL "")
  message(FATAL_ERROR "AAXW_SANITIZER must be empty, asan or tsan")
endif()

# The ThreadSanitizer build runs the tests labelled "threads" only: test
# programs without that label are left out of its default build, which is
# most of its time on a small machine. They still build when named.
function(aaxw_only_outside_thread_build)
  if(AAXW_SANITIZER STREQUAL "tsan")
    foreach(_target IN LISTS ARGN)
      if(TARGET ${_target})
        set_target_properties(${_target} PROPERTIES EXCLUDE_FROM_ALL TRUE)
      endif()
    endforeach()
  endif()
endfunction()
