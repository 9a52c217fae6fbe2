# Writes a source that imports what a module imports, and does nothing with it:
# cmake -D OBJDUMP=... -D MODULE=... -D OUTPUT=... -P emptymodule.cmake
execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n\t[0-9a-f]+\t +[0-9]+  [A-Za-z0-9_?@$.]+" imports "${headers}")
set(text "")
foreach(import IN LISTS imports)
  string(REGEX REPLACE ".* " "" name "${import}")
  string(APPEND text "    \".quad __imp_${name}\\n\"\n")
endforeach()
file(WRITE ${OUTPUT} "__asm__(\n    \".data\\n\"\n${text});\n")
