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
