# What an installation holds, and the ZIP that the target "package" makes of it. Both run and are found wherever they are moved.
include(CMakePackageConfigHelpers)

# Host and library share one run-time library, so a debug build is another library: it has folders of its own.
set(bin "$<$<CONFIG:Debug>:debug/>bin")
set(lib "$<$<CONFIG:Debug>:debug/>lib")
set(config_folder lib/cmake/OrvaneDriverInfo)

# strip_installed(<file>... [DEBUG_FOLDER <folder>]): takes the debug information out of files that were installed into `bin`. With
# a folder, each then names the file there that has it.
function(strip_installed)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "DEBUG_FOLDER" "")
  foreach(file ${arg_UNPARSED_ARGUMENTS})
    set(link)
    if(arg_DEBUG_FOLDER)
      set(link "execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --add-gnu-debuglink=${arg_DEBUG_FOLDER}/${file}.debug \"\${file}\"
        COMMAND_ERROR_IS_FATAL ANY)")
    endif()
    install(CODE "set(file \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${bin}/${file}\")
      execute_process(COMMAND \"${CMAKE_STRIP}\" \"\${file}\" COMMAND_ERROR_IS_FATAL ANY)
      ${link}")
  endforeach()
endfunction()

# install_without_debug_information(<target>...): to be called when the targets themselves are installed. Their debug information is
# the component "debug", which becomes a ZIP of its own.
function(install_without_debug_information)
  foreach(target ${ARGN})
    if(MSVC)
      install(FILES $<TARGET_PDB_FILE:${target}> DESTINATION ${bin} COMPONENT debug EXCLUDE_FROM_ALL)
    else()
      get_target_property(type ${target} TYPE)
      set(file ${target}.dll)
      if(type STREQUAL EXECUTABLE)
        set(file ${target}.exe)
      endif()
      strip_installed(${file} DEBUG_FOLDER ${PROJECT_BINARY_DIR}/debug)
      install(FILES ${PROJECT_BINARY_DIR}/debug/${file}.debug DESTINATION ${bin} COMPONENT debug EXCLUDE_FROM_ALL)
    endif()
  endforeach()
endfunction()

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
# Where scripts/make-known-drivers made one.
install(FILES "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/known-drivers.json" DESTINATION ${bin} OPTIONAL)
install_without_debug_information(driverinfo logging pciinfo driverlist)
install(FILES docs/driverlist.md docs/interface.md DESTINATION docs)
install(DIRECTORY docs/policies docs/schema DESTINATION docs)
# The program itself knows its options best: it writes its manual page and its completion.
install(CODE "
  foreach(file_and_topic \"driverlist.1 man\" \"driverlist.ps1 completion\")
    separate_arguments(file_and_topic)
    list(GET file_and_topic 0 file)
    list(GET file_and_topic 1 topic)
    set(path \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/docs/\${file}\")
    message(STATUS \"Installing: \${path}\")
    execute_process(
      COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} \"$<TARGET_FILE:driverlist>\" help \${topic}
      OUTPUT_FILE \"\${path}\"
      COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
")

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

# The library for any language: one file, whatever else there is.
set(interface_config_folder lib/cmake/OrvaneDriverInventory)
install(TARGETS driverinventory RUNTIME DESTINATION ${bin} ARCHIVE DESTINATION ${lib})
install_without_debug_information(driverinventory)
if(NOT MSVC)
  install(FILES ${PROJECT_BINARY_DIR}/lib/driverinventory.lib DESTINATION ${lib})
endif()
install(FILES
  src/module/interface/driverinventory.h
  src/module/interface/driverinventory.hpp
  DESTINATION include/driverinventory)
install(FILES src/module/interface/driverinventory.def DESTINATION lib)
foreach(host c cpp csharp go msvc node powershell python rust)
  install(DIRECTORY examples/${host} DESTINATION examples
    PATTERN node_modules EXCLUDE PATTERN __pycache__ EXCLUDE PATTERN target EXCLUDE)
endforeach()
configure_package_config_file(cmake/OrvaneDriverInventoryConfig.cmake.in OrvaneDriverInventoryConfig.cmake
  INSTALL_DESTINATION ${interface_config_folder} NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(OrvaneDriverInventoryConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/OrvaneDriverInventoryConfig.cmake
  ${PROJECT_BINARY_DIR}/OrvaneDriverInventoryConfigVersion.cmake
  DESTINATION ${interface_config_folder})

# The run-time library, and the licence of everything that is in the files above.
install(FILES LICENSE DESTINATION licenses RENAME driverinfo.txt)
if(MSVC)
  set(CMAKE_INSTALL_SYSTEM_RUNTIME_DESTINATION bin)
  include(InstallRequiredSystemLibraries)
  set(names Boost CLI11 fmt nlohmann-json pugixml spdlog)
  set(ports boost-filesystem cli11 fmt nlohmann-json pugixml spdlog)
  foreach(name port IN ZIP_LISTS names ports)
    install(FILES "${VCPKG_INSTALLED_DIR}/${VCPKG_TARGET_TRIPLET}/share/${port}/copyright"
      DESTINATION licenses RENAME ${name}.txt)
  endforeach()
else()
  install(FILES ${runtime_dlls} DESTINATION bin)
  strip_installed(${runtime_dll_names})
  foreach(name Boost CLI11 fmt nlohmann-json pugixml spdlog GCC mingw-w64 GPL-3)
    install(FILES "${CMAKE_FIND_ROOT_PATH}/share/licenses/${name}.txt" DESTINATION licenses)
  endforeach()
endif()

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_VENDOR Orvane)
  set(package_name "driverinfo-${PROJECT_VERSION}-windows-x64")
  set(CPACK_PACKAGE_FILE_NAME ${package_name})
  # Two ZIPs: what users need, and what debuggers need.
  set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
  set(CPACK_COMPONENTS_ALL Unspecified debug)
  set(CPACK_ARCHIVE_UNSPECIFIED_FILE_NAME ${package_name})
  set(CPACK_ARCHIVE_DEBUG_FILE_NAME ${package_name}-debug)
  set(CPACK_VERBATIM_VARIABLES ON)
  include(CPack)
endif()
