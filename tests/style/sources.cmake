# Sets `files` to the sources and headers below `source`.
cmake_minimum_required(VERSION 3.25)
set(files)
foreach(folder src bench examples tests)
  file(GLOB_RECURSE found ${source}/${folder}/*.cpp ${source}/${folder}/*.h)
  list(APPEND files ${found})
endforeach()
# What the style tests themselves look at.
if(NOT source MATCHES "unformed$")
  list(FILTER files EXCLUDE REGEX "/tests/style/unformed/")
endif()
if(NOT files)
  message(FATAL_ERROR "there are no sources below ${source}.")
endif()
