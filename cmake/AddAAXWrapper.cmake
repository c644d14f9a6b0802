# add_aax_wrapper(<target> NAME <plug-in name> EXTENSION <vst|vst3>
#                 BUNDLE_ID <id> VERSION <x.y.z> PRODUCT_ID <4cc>
#                 MANUFACTURER_ID <4cc> MANUFACTURER_NAME <name>
#                 [VST_PLUGIN <path or target>] [OUTPUT_DIR <dir>]
#                 [HOST_MODE CLASSIC|STANDARD])
#
# HOST_MODE decides how the bundle hosts its VST plug-in: CLASSIC (default)
# behaves exactly as the wrapper always has; STANDARD behaves as mainstream
# VST hosts do, for plug-ins written against the VST documentation.
#
# Builds <OUTPUT_DIR>/<Name>.aaxplugin/Contents/x86_64-linux/<Name>.so (default
# OUTPUT_DIR: ${CMAKE_BINARY_DIR}/bundles): the front end plus the identity of
# one product. With VST_PLUGIN the wrapped plug-in is copied after each build
# into Contents/Resources/<Name>.<extension>, where the wrapper finds it.
include_guard(GLOBAL)

# Also usable on its own, from an installed package: its helpers sit beside it.
if(NOT COMMAND aaxw_strict_warnings)
  include("${CMAKE_CURRENT_LIST_DIR}/Warnings.cmake")
endif()
if(NOT DEFINED AAXW_GIT_REVISION)
  include("${CMAKE_CURRENT_LIST_DIR}/GitRevision.cmake")
endif()

# 'TvV2' -> 1417041458: AAX type IDs are big-endian four-character codes.
function(_aaxw_fourcc_to_int text outVar)
  # Accept the C spelling 'TvV2' as well as TvV2.
  if(text MATCHES "^'(.*)'$")
    set(text "${CMAKE_MATCH_1}")
  endif()
  string(LENGTH "${text}" _length)
  if(NOT _length EQUAL 4)
    message(FATAL_ERROR "add_aax_wrapper: four-character code '${text}' must be exactly 4 characters")
  endif()
  string(HEX "${text}" _hex)
  string(LENGTH "${_hex}" _hexLength)
  if(NOT _hexLength EQUAL 8)
    message(FATAL_ERROR "add_aax_wrapper: four-character code '${text}' must be 4 single-byte characters")
  endif()
  math(EXPR _value "0x${_hex}" OUTPUT_FORMAT DECIMAL)
  set(${outVar} "${_value}" PARENT_SCOPE)
endfunction()

# Run once the whole tree is configured, so VST_PLUGIN may name a target that
# is defined after the wrapper. Writes the plug-in's path (or nothing) into
# sourceFile at generate time; the copy step reads it from there.
function(_aaxw_resolve_plugin target plugin sourceDir sourceFile)
  if(TARGET "${plugin}")
    add_dependencies(${target}_copy_plugin ${plugin})
    set(_source "$<TARGET_FILE:${plugin}>")
  else()
    get_filename_component(_source "${plugin}" ABSOLUTE BASE_DIR "${sourceDir}")
    if(NOT IS_ABSOLUTE "${plugin}" AND NOT EXISTS "${_source}")
      message(WARNING "add_aax_wrapper(${target}): VST_PLUGIN '${plugin}' is neither a target nor a path; "
                      "the bundle is built without a plug-in")
      set(_source "")
    endif()
  endif()
  file(GENERATE OUTPUT "${sourceFile}" CONTENT "${_source}")
endfunction()

# Compiles the front end's identity source into <target> with one product's
# identity. add_aax_wrapper() uses it; tests use it to build a front end with
# a known identity.
function(aaxw_target_identity target)
  cmake_parse_arguments(PARSE_ARGV 1 ID "" "NAME;EXTENSION;BUNDLE_ID;VERSION;PRODUCT_ID;MANUFACTURER_ID;MANUFACTURER_NAME;HOST_MODE" "")
  foreach(_required NAME EXTENSION BUNDLE_ID VERSION PRODUCT_ID MANUFACTURER_ID MANUFACTURER_NAME)
    if(NOT DEFINED ID_${_required} OR "${ID_${_required}}" STREQUAL "")
      message(FATAL_ERROR "add_aax_wrapper(${target}): ${_required} is required")
    endif()
  endforeach()
  if(NOT ID_EXTENSION MATCHES "^(vst|vst3)$")
    message(FATAL_ERROR "add_aax_wrapper(${target}): EXTENSION must be vst or vst3, not '${ID_EXTENSION}'")
  endif()
  if(ID_NAME MATCHES "[\"\\\\/]")
    message(FATAL_ERROR "add_aax_wrapper(${target}): NAME '${ID_NAME}' may not contain quotes, backslashes or slashes")
  endif()
  if(NOT ID_HOST_MODE)
    set(ID_HOST_MODE CLASSIC)
  endif()
  if(NOT ID_HOST_MODE MATCHES "^(CLASSIC|STANDARD)$")
    message(FATAL_ERROR "add_aax_wrapper(${target}): HOST_MODE must be CLASSIC or STANDARD, not '${ID_HOST_MODE}'")
  endif()
  _aaxw_fourcc_to_int("${ID_PRODUCT_ID}" _productId)
  _aaxw_fourcc_to_int("${ID_MANUFACTURER_ID}" _manufacturerId)
  # The abbreviated revision is seven characters, whatever git was told.
  set(_revision "${AAXW_GIT_REVISION}0000000")
  string(SUBSTRING "${_revision}" 0 7 _revision)
  target_sources(${target} PRIVATE "${AAXW_FRONTEND_IDENTITY_SOURCE}")
  target_compile_definitions(${target} PRIVATE
    "AAXW_PLUGIN_NAME=\"${ID_NAME}\""
    "AAXW_EXTENSION_NAME=\"${ID_EXTENSION}\""
    "AAXW_BUNDLE_ID=\"${ID_BUNDLE_ID}\""
    "AAXW_GIT_REVISION=\"${_revision}\""
    "AAXW_VERSION=\"${ID_VERSION}\""
    "AAXW_MANUFACTURER_NAME=\"${ID_MANUFACTURER_NAME}\""
    "AAXW_PRODUCT_ID=${_productId}u"
    "AAXW_MANUFACTURER_ID=${_manufacturerId}u"
    "AAXW_HOST_MODE=\"${ID_HOST_MODE}\"")
endfunction()

function(add_aax_wrapper target)
  set(_oneValue NAME EXTENSION BUNDLE_ID VERSION PRODUCT_ID MANUFACTURER_ID MANUFACTURER_NAME VST_PLUGIN OUTPUT_DIR HOST_MODE)
  cmake_parse_arguments(PARSE_ARGV 1 AW "" "${_oneValue}" "")
  if(AW_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "add_aax_wrapper(${target}): unknown arguments ${AW_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT TARGET MorvaneAAXWrapper::aaxwrapper_frontend)
    message(FATAL_ERROR "add_aax_wrapper(${target}): the front-end library is not defined yet "
                        "(add this project with add_subdirectory() or find_package(MorvaneAAXWrapper) first)")
  endif()
  if(NOT AW_OUTPUT_DIR)
    set(AW_OUTPUT_DIR "${CMAKE_BINARY_DIR}/bundles")
  endif()
  # Two products writing one bundle folder would overwrite each other.
  get_filename_component(_bundle "${AW_OUTPUT_DIR}/${AW_NAME}.aaxplugin" ABSOLUTE)
  get_property(_owner GLOBAL PROPERTY "AAXW_BUNDLE_OWNER:${_bundle}")
  if(_owner)
    message(FATAL_ERROR "add_aax_wrapper(${target}): ${_owner} already builds ${_bundle}; "
                        "give one of them another OUTPUT_DIR")
  endif()
  set_property(GLOBAL PROPERTY "AAXW_BUNDLE_OWNER:${_bundle}" "${target}")
  set(_contents "${AW_OUTPUT_DIR}/${AW_NAME}.aaxplugin/Contents")
  set(_binaryDir "${_contents}/x86_64-linux")

  add_library(${target} MODULE)
  aaxw_target_identity(${target}
    NAME "${AW_NAME}" EXTENSION "${AW_EXTENSION}" BUNDLE_ID "${AW_BUNDLE_ID}" VERSION "${AW_VERSION}"
    PRODUCT_ID "${AW_PRODUCT_ID}" MANUFACTURER_ID "${AW_MANUFACTURER_ID}"
    MANUFACTURER_NAME "${AW_MANUFACTURER_NAME}" HOST_MODE "${AW_HOST_MODE}")
  # The whole front end goes in: nothing inside the bundle refers to the
  # exported entry points, so plain archive linking would drop them.
  target_link_libraries(${target} PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,MorvaneAAXWrapper::aaxwrapper_frontend>")
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME "${AW_NAME}"
    PREFIX ""
    SUFFIX ".so"
    LIBRARY_OUTPUT_DIRECTORY "${_binaryDir}"
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  if(APPLE)
    # A Core Foundation bundle: CMake lays out <Name>.aaxplugin/Contents/MacOS.
    set_target_properties(${target} PROPERTIES
      BUNDLE TRUE
      BUNDLE_EXTENSION aaxplugin
      SUFFIX ""
      LIBRARY_OUTPUT_DIRECTORY "${AW_OUTPUT_DIR}"
      MACOSX_BUNDLE_GUI_IDENTIFIER "${AW_BUNDLE_ID}"
      MACOSX_BUNDLE_BUNDLE_NAME "${AW_NAME}"
      MACOSX_BUNDLE_BUNDLE_VERSION "${AW_VERSION}"
      MACOSX_BUNDLE_SHORT_VERSION_STRING "${AW_VERSION}")
    set(_exports "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/AAXWrapperExports.exp")
    target_link_options(${target} PRIVATE "LINKER:-exported_symbols_list,${_exports}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${_exports}")
  else()
    set(_map "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/AAXWrapperExports.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${_map}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${_map}")
    # A missing symbol should fail the build, not the host's dlopen. Sanitizer
    # runtimes live in the host executable, so the check is off for them.
    if("${AAXW_SANITIZER}" STREQUAL "")
      target_link_options(${target} PRIVATE "LINKER:--no-undefined")
    endif()
  endif()
  aaxw_strict_warnings(${target})

  if(AW_VST_PLUGIN)
    set(_sourceFile "${CMAKE_CURRENT_BINARY_DIR}/${target}_vst_plugin.txt")
    # Deferred arguments would be expanded only when the call runs, in another
    # scope: bake the values in now.
    cmake_language(EVAL CODE "
      cmake_language(DEFER DIRECTORY [[${CMAKE_SOURCE_DIR}]] CALL _aaxw_resolve_plugin
        [[${target}]] [[${AW_VST_PLUGIN}]] [[${CMAKE_CURRENT_SOURCE_DIR}]] [[${_sourceFile}]])")
    # Run at every build, not only when the bundle relinks: a rebuilt or
    # replaced plug-in must reach the bundle (the script skips an unchanged file).
    add_custom_target(${target}_copy_plugin ALL
      COMMAND "${CMAKE_COMMAND}" "-DSOURCE_FILE=${_sourceFile}" "-DDEST=${_contents}/Resources"
              "-DFILE_NAME=${AW_NAME}.${AW_EXTENSION}" "-DSTAMP=${CMAKE_CURRENT_BINARY_DIR}/${target}_vst_plugin.stamp"
              -P "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/AAXWrapperCopyPlugin.cmake"
      COMMENT "Copying the VST plug-in into ${AW_NAME}.aaxplugin"
      VERBATIM)
    add_dependencies(${target} ${target}_copy_plugin)
  endif()
endfunction()
