# What every DLL and program of the project shares.

# project_target(<target>): language, warnings, hardening.
function(project_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_definitions(${target} PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601 WINVER=0x0601)
  if(MSVC)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:/W4;/utf-8;/permissive-;/Zc:__cplusplus>)
    # The run-time library's functions are chosen for what they do; each buffer is bounded.
    target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
    target_link_options(${target} PRIVATE /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT)
  else()
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion>)
    # Log lines name their source file as the repository does, wherever that was built. (MSVC gives the full path.)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>)
    target_link_options(${target} PRIVATE -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
  endif()
endfunction()

# windows_target(<target> <description>): the same, with a version resource that says what the file is.
function(windows_target target description)
  project_target(${target})
  get_target_property(type ${target} TYPE)
  set(extension dll)
  set(file_type VFT_DLL)
  if(type STREQUAL EXECUTABLE)
    set(extension exe)
    set(file_type VFT_APP)
  endif()
  set(file_name ${target}.${extension})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  if(MINGW)
    # A file of its own for debuggers; what is installed is stripped and names it.
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/debug
      COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:${target}> ${PROJECT_BINARY_DIR}/debug/${file_name}.debug
      VERBATIM)
  endif()
endfunction()

# The C++ run-time library of mingw-w64 is shared by all modules; its DLLs stand beside them.
if(MINGW)
  foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll} OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${path}")
      message(FATAL_ERROR "${CMAKE_CXX_COMPILER} does not say where ${dll} is.")
    endif()
    configure_file("${path}" "${PROJECT_BINARY_DIR}/bin/${dll}" COPYONLY)
    list(APPEND runtime_dlls "${PROJECT_BINARY_DIR}/bin/${dll}")
  endforeach()
endif()

# copies_beside(<target> <folder> <module>...): puts copies of the modules, as they were built, and what they need into the folder
# before the target is built, whose program stands there and takes some modules of its own.
function(copies_beside target folder)
  set(copies ${target}_copies)
  list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE files)
  add_custom_target(${copies}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${files} ${runtime_dlls} ${folder})
  add_dependencies(${copies} ${ARGN})
  add_dependencies(${target} ${copies})
endfunction()
