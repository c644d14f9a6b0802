# The VST 3 SDK pieces we build: what a host needs (vst3sdk_hosting) and what
# our own test plug-ins need (vst3sdk_plugin). SDK sources keep their own
# warning level; our strict flags never reach them.
include_guard(GLOBAL)

if(NOT EXISTS "${VST3_SDK_ROOT}/pluginterfaces/base/funknown.h")
  message(WARNING "VST 3 SDK not found in '${VST3_SDK_ROOT}' (run scripts/setup)")
  return()
endif()

set(_vst3_sdk_common
  ${VST3_SDK_ROOT}/pluginterfaces/base/coreiids.cpp
  ${VST3_SDK_ROOT}/pluginterfaces/base/funknown.cpp
  ${VST3_SDK_ROOT}/pluginterfaces/base/ustring.cpp
  ${VST3_SDK_ROOT}/pluginterfaces/base/conststringtable.cpp
  ${VST3_SDK_ROOT}/base/source/baseiids.cpp
  ${VST3_SDK_ROOT}/base/source/fbuffer.cpp
  ${VST3_SDK_ROOT}/base/source/fdebug.cpp
  ${VST3_SDK_ROOT}/base/source/fobject.cpp
  ${VST3_SDK_ROOT}/base/source/fstreamer.cpp
  ${VST3_SDK_ROOT}/base/source/fstring.cpp
  ${VST3_SDK_ROOT}/base/source/updatehandler.cpp
  ${VST3_SDK_ROOT}/base/thread/source/flock.cpp
  ${VST3_SDK_ROOT}/public.sdk/source/common/memorystream.cpp
  ${VST3_SDK_ROOT}/public.sdk/source/vst/vstinitiids.cpp
)

# The SDK folder defines no identifiers for the editor interfaces; this
# generated unit does, for hosts and plug-ins alike.
set(_vst3_gui_iids "${PROJECT_BINARY_DIR}/vst3sdk_gui_iids.cpp")
file(WRITE "${_vst3_gui_iids}.tmp"
  "#include \"pluginterfaces/gui/iplugview.h\"\n"
  "#include \"pluginterfaces/gui/iplugviewcontentscalesupport.h\"\n"
  "namespace Steinberg {\n"
  "DEF_CLASS_IID (IPlugView)\n"
  "DEF_CLASS_IID (IPlugFrame)\n"
  "DEF_CLASS_IID (IPlugViewContentScaleSupport)\n"
  "namespace Linux {\n"
  "DEF_CLASS_IID (IEventHandler)\n"
  "DEF_CLASS_IID (ITimerHandler)\n"
  "DEF_CLASS_IID (IRunLoop)\n"
  "}\n"
  "}\n")
configure_file("${_vst3_gui_iids}.tmp" "${_vst3_gui_iids}" COPYONLY)
list(APPEND _vst3_sdk_common "${_vst3_gui_iids}")

function(_vst3_sdk_flags target)
  # Only our own back end compiles against the SDK: an installed package
  # hands its headers to nobody.
  target_include_directories(${target} SYSTEM PUBLIC $<BUILD_INTERFACE:${VST3_SDK_ROOT}>)
  target_compile_definitions(${target} PUBLIC $<IF:$<CONFIG:Debug>,DEVELOPMENT=1,RELEASE=1>)
  target_compile_options(${target} PRIVATE -w)
  find_package(Threads REQUIRED)
  target_link_libraries(${target} PUBLIC Threads::Threads)
endfunction()

if(NOT TARGET vst3sdk_hosting)
  add_library(vst3sdk_hosting STATIC
    ${_vst3_sdk_common}
    ${VST3_SDK_ROOT}/public.sdk/source/vst/hosting/hostclasses.cpp
    ${VST3_SDK_ROOT}/public.sdk/source/vst/hosting/pluginterfacesupport.cpp
  )
  _vst3_sdk_flags(vst3sdk_hosting)
endif()

if(NOT TARGET vst3sdk_plugin)
  add_library(vst3sdk_plugin STATIC
    ${_vst3_sdk_common}
    ${VST3_SDK_ROOT}/public.sdk/source/common/pluginview.cpp
    ${VST3_SDK_ROOT}/public.sdk/source/vst/vstbus.cpp
    ${VST3_SDK_ROOT}/public.sdk/source/vst/vstcomponent.cpp
    ${VST3_SDK_ROOT}/public.sdk/source/vst/vstcomponentbase.cpp
    ${VST3_SDK_ROOT}/public.sdk/source/vst/vsteditcontroller.cpp
    ${VST3_SDK_ROOT}/public.sdk/source/vst/vstparameters.cpp
  )
  _vst3_sdk_flags(vst3sdk_plugin)
endif()

set(_VST3SDK_CMAKE_DIR "${CMAKE_CURRENT_LIST_DIR}")

# add_vst3_bundle(<target> NAME <name> SOURCES ... OUTPUT_DIR <dir> [LIBRARIES ...])
# Builds <dir>/<name>.vst3/Contents/x86_64-linux/<name>.so exporting only
# GetPluginFactory, ModuleEntry and ModuleExit, so that a host that carries
# its own copy of the SDK never binds the plug-in to it (or the reverse).
function(add_vst3_bundle target)
  cmake_parse_arguments(ARG "" "NAME;OUTPUT_DIR" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT ARG_NAME)
    set(ARG_NAME ${target})
  endif()
  if(NOT ARG_OUTPUT_DIR)
    set(ARG_OUTPUT_DIR "${PROJECT_BINARY_DIR}/vst3")
  endif()
  add_library(${target} MODULE ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE vst3sdk_plugin ${ARG_LIBRARIES})
  set(_exports "${PROJECT_BINARY_DIR}/vst3_bundle_exports.map")
  if(NOT EXISTS "${_exports}")
    file(WRITE "${_exports}" "{ global: GetPluginFactory; ModuleEntry; ModuleExit; local: *; };\n")
  endif()
  target_link_options(${target} PRIVATE "-Wl,--version-script=${_exports}" "-Wl,-Bsymbolic")
  set_target_properties(${target} PROPERTIES
    PREFIX ""
    OUTPUT_NAME "${ARG_NAME}"
    SUFFIX ".so"
    LIBRARY_OUTPUT_DIRECTORY "${ARG_OUTPUT_DIR}/${ARG_NAME}.vst3/Contents/x86_64-linux")
endfunction()
