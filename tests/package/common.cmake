# What the package's tests share.
cmake_minimum_required(VERSION 3.25)

# run(<command>...): sets `output`; a failure ends the test with what the command said.
macro(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}${errors}")
  endif()
  string(REPLACE "\r" "" output "${output}")
endmacro()

# equal(<what> <actual> <expected>)
function(equal what actual expected)
  if(NOT "${actual}" STREQUAL "${expected}")
    message(SEND_ERROR "${what}:\n${actual}\nexpected:\n${expected}")
  endif()
endfunction()

# unpack(<name> [<zip>]): unpacks the ZIP into a new folder of the name, whose only entry becomes `unpacked`.
macro(unpack name)
  set(archive ${zip} ${ARGN})
  list(GET archive -1 archive)
  file(REMOVE_RECURSE ${folder}/${name})
  file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${folder}/${name})
  file(GLOB unpacked ${folder}/${name}/*)
  list(LENGTH unpacked entries)
  equal("entries at the top" ${entries} 1)
endmacro()

# without_help(): from here on, nothing but its folder and the system's own help a program to its DLLs.
macro(without_help)
  unset(ENV{WINEPATH})
  if(NOT emulator)
    set(ENV{PATH} "$ENV{SystemRoot}\\System32")
  endif()
endmacro()
