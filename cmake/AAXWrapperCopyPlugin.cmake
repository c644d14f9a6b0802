# Build-time step of add_aax_wrapper(): puts the wrapped VST plug-in into the
# bundle's resource folder under the name the wrapper looks for.
#   -DSOURCE_FILE=<text file holding the plug-in's file or folder>
#   -DDEST=<Resources folder>  -DFILE_NAME=<Name>.<ext>
#   -DSTAMP=<file remembering which plug-in was copied last>
file(READ "${SOURCE_FILE}" SOURCE)
string(STRIP "${SOURCE}" SOURCE)
if(SOURCE STREQUAL "")
  message(WARNING "add_aax_wrapper: no VST plug-in to copy into ${DEST}")
  return()
endif()
if(NOT EXISTS "${SOURCE}")
  message(FATAL_ERROR "add_aax_wrapper: VST plug-in '${SOURCE}' does not exist")
endif()

# A target's output file may sit inside a bundle folder (X.vst/X.so or
# X.vst3/Contents/<arch>/X.so): the whole bundle is what must be copied.
set(_source "${SOURCE}")
if(NOT IS_DIRECTORY "${_source}")
  set(_probe "${_source}")
  foreach(_level RANGE 1 3)
    get_filename_component(_probe "${_probe}" DIRECTORY)
    if(_probe MATCHES "\\.(vst|vst3)$")
      set(_source "${_probe}")
      break()
    endif()
  endforeach()
endif()

set(_target "${DEST}/${FILE_NAME}")
# A plain library already copied from the same place, and not changed since,
# stays; a bundle folder is copied again (its library may be renamed below).
if(DEFINED STAMP AND EXISTS "${STAMP}" AND EXISTS "${_target}" AND NOT IS_DIRECTORY "${_source}")
  file(READ "${STAMP}" _copiedFrom)
  if(_copiedFrom STREQUAL _source AND NOT "${_source}" IS_NEWER_THAN "${_target}")
    return()
  endif()
endif()
file(REMOVE_RECURSE "${_target}")
file(MAKE_DIRECTORY "${DEST}")
if(IS_DIRECTORY "${_source}")
  file(COPY "${_source}/" DESTINATION "${_target}")
  # On Linux a bundle's library is named after the bundle: a bundle copied
  # under the product's name must have its library renamed with it.
  get_filename_component(_sourceStem "${_source}" NAME_WLE)
  get_filename_component(_targetStem "${FILE_NAME}" NAME_WLE)
  if(NOT _sourceStem STREQUAL _targetStem)
    foreach(_folder "${_target}/Contents/x86_64-linux" "${_target}")
      if(EXISTS "${_folder}/${_sourceStem}.so" AND NOT EXISTS "${_folder}/${_targetStem}.so")
        file(RENAME "${_folder}/${_sourceStem}.so" "${_folder}/${_targetStem}.so")
      endif()
    endforeach()
  endif()
else()
  file(COPY_FILE "${_source}" "${_target}")
endif()
if(DEFINED STAMP)
  file(WRITE "${STAMP}" "${_source}")
endif()
