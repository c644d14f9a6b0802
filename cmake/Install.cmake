# `cmake --install` lays out a package another project finds with
# find_package(MorvaneAAXWrapper CONFIG REQUIRED), then add_aax_wrapper():
# the front-end libraries, the AAX library, the headers the per-bundle
# identity source needs, the CMake module with its helpers, and aaxhost.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(_aaxw_package MorvaneAAXWrapper)
set(_aaxw_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/${_aaxw_package}")
set(_aaxw_include_dir "${CMAKE_INSTALL_INCLUDEDIR}/${_aaxw_package}")

install(TARGETS aaxwrapper_frontend aaxwrapper_fakehost aaxwrapper_vst2 aaxwrapper_vst3 vst3sdk_hosting aaxlib
                basictools basictools_logger basictools_sharedobject
        EXPORT ${_aaxw_package}Targets
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}/${_aaxw_package}")
install(EXPORT ${_aaxw_package}Targets NAMESPACE ${_aaxw_package}:: DESTINATION "${_aaxw_cmake_dir}")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/aaxlib/include/" DESTINATION "${_aaxw_include_dir}/aaxlib"
        FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/basictools/" DESTINATION "${_aaxw_include_dir}/basictools"
        FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(FILES "${PROJECT_SOURCE_DIR}/aaxwrapper/src/AAXWrapper_Identity.h"
        DESTINATION "${_aaxw_include_dir}/aaxwrapper")
install(FILES "${PROJECT_SOURCE_DIR}/aaxwrapper/src/fakehost/HostMode.h"
        DESTINATION "${_aaxw_include_dir}/aaxwrapper/fakehost")
install(FILES "${AAXW_FRONTEND_IDENTITY_SOURCE}" DESTINATION "${CMAKE_INSTALL_DATADIR}/${_aaxw_package}")
install(FILES
          "${PROJECT_SOURCE_DIR}/cmake/AddAAXWrapper.cmake"
          "${PROJECT_SOURCE_DIR}/cmake/AAXWrapperCopyPlugin.cmake"
          "${PROJECT_SOURCE_DIR}/cmake/AAXWrapperExports.map"
          "${PROJECT_SOURCE_DIR}/cmake/AAXWrapperExports.exp"
          "${PROJECT_SOURCE_DIR}/cmake/GitRevision.cmake"
          "${PROJECT_SOURCE_DIR}/cmake/Warnings.cmake"
        DESTINATION "${_aaxw_cmake_dir}")
if(TARGET aaxhost)
  install(TARGETS aaxhost RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/${_aaxw_package}Config.cmake.in"
  "${PROJECT_BINARY_DIR}/${_aaxw_package}Config.cmake" INSTALL_DESTINATION "${_aaxw_cmake_dir}"
  PATH_VARS CMAKE_INSTALL_DATADIR CMAKE_INSTALL_BINDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/${_aaxw_package}ConfigVersion.cmake"
  VERSION "${PROJECT_VERSION}" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/${_aaxw_package}Config.cmake"
              "${PROJECT_BINARY_DIR}/${_aaxw_package}ConfigVersion.cmake"
        DESTINATION "${_aaxw_cmake_dir}")
