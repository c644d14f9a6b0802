# Seven-character abbreviated revision of the sources, for GIT_REVISION.
execute_process(
  COMMAND git rev-parse --short=7 HEAD
  WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}"
  OUTPUT_VARIABLE AAXW_GIT_REVISION
  OUTPUT_STRIP_TRAILING_WHITESPACE
  ERROR_QUIET
  RESULT_VARIABLE _aaxw_git_rc)
if(NOT _aaxw_git_rc EQUAL 0 OR AAXW_GIT_REVISION STREQUAL "")
  # Seven characters like a revision, and plainly not one.
  set(AAXW_GIT_REVISION "unknown")
endif()
# Visible in every directory scope, also to a parent project that added
# this one as a subdirectory and calls add_aax_wrapper() itself.
set(AAXW_GIT_REVISION "${AAXW_GIT_REVISION}" CACHE INTERNAL "Abbreviated source revision for the bundles")
