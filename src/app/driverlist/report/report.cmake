# The HTML report as part of a target: add_report(<target>).
function(add_report target)
  set(folder ${CMAKE_CURRENT_SOURCE_DIR}/report)
  set(skeleton ${CMAKE_CURRENT_BINARY_DIR}/report/skeleton.cpp)
  add_custom_command(
    OUTPUT ${skeleton}
    COMMAND ${CMAKE_COMMAND} -D output=${skeleton} -P ${folder}/skeleton.cmake
    DEPENDS ${folder}/report.html ${folder}/report.css ${folder}/report.js ${folder}/skeleton.cmake ${folder}/skeleton.cpp.in
    COMMENT "Putting the report's page together"
    VERBATIM)
  target_sources(${target} PRIVATE
    htmlformat.cpp
    report/htmltext.cpp
    report/imagedate.cpp
    report/summary.cpp
    ${skeleton})
  target_include_directories(${target} PUBLIC ${folder})
endfunction()
