# All sources are as clang-format leaves them.
include(${CMAKE_CURRENT_LIST_DIR}/sources.cmake)
execute_process(COMMAND ${tool} --dry-run --Werror ${files} RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${errors}\nCall ${tool} -i on these files.")
endif()
