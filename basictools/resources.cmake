# basictools: string utilities, well-known locations and the resource-folder
# search. Locations.h and stlutils.h are header-level; Resources logs.
add_library(basictools STATIC
  ${CMAKE_CURRENT_LIST_DIR}/Resources.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Resources.h
  ${CMAKE_CURRENT_LIST_DIR}/Locations.h
  ${CMAKE_CURRENT_LIST_DIR}/stlutils.h
  ${CMAKE_CURRENT_LIST_DIR}/ThreadRole.h
)
target_include_directories(basictools PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/basictools>
  $<INSTALL_INTERFACE:include/MorvaneAAXWrapper/basictools>)
target_link_libraries(basictools PUBLIC basictools_logger ${CMAKE_DL_LIBS})
if(AAXW_THREAD_CHECKS)
  target_compile_definitions(basictools PUBLIC MORVANE_THREAD_CHECKS=1)
endif()
# Hidden by default: two bundles built from this code may live in one host,
# and each must keep its own Resources singleton (template statics would
# otherwise be bound process-wide by the loader as unique symbols).
set_target_properties(basictools PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
aaxw_strict_warnings(basictools)
