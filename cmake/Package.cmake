# What an installation holds, and the ZIP that the target "package" makes of it. Both run and are found wherever they are moved.
include(CMakePackageConfigHelpers)

# Host and library share one run-time library, so a debug build is another library: it has folders of its own.
set(bin "$<$<CONFIG:Debug>:debug/>bin")
set(lib "$<$<CONFIG:Debug>:debug/>lib")
set(config_folder lib/cmake/OrvaneDriverInfo)

# A folder of their own for the headers: log.h is too common a name to share one.
install(TARGETS driverinfo logging pciinfo EXPORT OrvaneDriverInfoTargets
  RUNTIME DESTINATION ${bin}
  ARCHIVE DESTINATION ${lib}
  INCLUDES DESTINATION include/driverinfo)
install(FILES
  src/module/osinfos/driverinfo/driverinfo.h
  src/module/osinfos/pciinfo/pciinfo.h
  src/module/logging/log.h
  DESTINATION include/driverinfo)
install(TARGETS driverlist RUNTIME DESTINATION ${bin})
install(FILES docs/driverlist.md DESTINATION docs)
install(DIRECTORY docs/schema DESTINATION docs)

foreach(dll ${runtime_dlls})
  cmake_path(GET dll FILENAME name)
  list(APPEND runtime_dll_names ${name})
endforeach()
install(EXPORT OrvaneDriverInfoTargets NAMESPACE Orvane:: DESTINATION ${config_folder})
configure_package_config_file(cmake/OrvaneDriverInfoConfig.cmake.in OrvaneDriverInfoConfig.cmake
  INSTALL_DESTINATION ${config_folder} NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(OrvaneDriverInfoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/OrvaneDriverInfoConfig.cmake
  ${PROJECT_BINARY_DIR}/OrvaneDriverInfoConfigVersion.cmake
  DESTINATION ${config_folder})

# The run-time library, and the licence of everything that is in the files above.
install(FILES LICENSE DESTINATION licenses RENAME driverinfo.txt)
if(MSVC)
  set(CMAKE_INSTALL_SYSTEM_RUNTIME_DESTINATION bin)
  include(InstallRequiredSystemLibraries)
  set(names Boost CLI11 fmt nlohmann-json spdlog)
  set(ports boost-filesystem cli11 fmt nlohmann-json spdlog)
  foreach(name port IN ZIP_LISTS names ports)
    install(FILES "${VCPKG_INSTALLED_DIR}/${VCPKG_TARGET_TRIPLET}/share/${port}/copyright"
      DESTINATION licenses RENAME ${name}.txt)
  endforeach()
else()
  install(FILES ${runtime_dlls} DESTINATION bin)
  foreach(name Boost CLI11 fmt nlohmann-json spdlog GCC mingw-w64 GPL-3)
    install(FILES "${CMAKE_FIND_ROOT_PATH}/share/licenses/${name}.txt" DESTINATION licenses)
  endforeach()
endif()

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_VENDOR Orvane)
  set(package_name "driverinfo-${PROJECT_VERSION}-windows-x64")
  set(CPACK_PACKAGE_FILE_NAME ${package_name})
  set(CPACK_VERBATIM_VARIABLES ON)
  include(CPack)
endif()
