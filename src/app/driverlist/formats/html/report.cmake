# The HTML report as part of a target: add_report(<target>).
function(add_report target)
  set(folder ${CMAKE_CURRENT_SOURCE_DIR}/html)
  set(skeleton ${CMAKE_CURRENT_BINARY_DIR}/html/skeleton.cpp)
  add_custom_command(
    OUTPUT ${skeleton}
    COMMAND ${CMAKE_COMMAND} -D output=${skeleton} -P ${folder}/skeleton.cmake
    DEPENDS ${folder}/report.html ${folder}/report.css ${folder}/report.js ${folder}/skeleton.cmake ${folder}/skeleton.cpp.in
    COMMENT "Putting the report's page together"
    VERBATIM)
  # The target may be one of another folder, which would not see the command itself.
  add_custom_target(${target}_report DEPENDS ${skeleton})
  add_dependencies(${target} ${target}_report)
  target_sources(${target} PRIVATE
    html/findingrecords.cpp
    html/htmlcolumn.cpp
    html/htmldata.cpp
    html/htmldiff.cpp
    html/htmlfindings.cpp
    html/htmlformat.cpp
    html/htmlpage.cpp
    html/htmlsummary.cpp
    html/htmltable.cpp
    html/htmltext.cpp
    html/isotime.cpp
    html/linebreaks.cpp
    html/relations.cpp
    html/summary.cpp
    ${skeleton})
endfunction()
