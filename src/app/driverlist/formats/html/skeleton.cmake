# cmake -D output=FILE -P skeleton.cmake: puts report.html, report.css and report.js together and writes them as C++.

# read_text(<variable> <file>): line ends as a browser sees them, since the policy of the page names what the texts hash to.
function(read_text variable file)
  file(READ "${CMAKE_CURRENT_LIST_DIR}/${file}" text)
  string(REPLACE "\r\n" "\n" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# policy_source(<variable> <text>): the text as a source in a content security policy, "sha256-" and the hash in base 64.
function(policy_source variable text)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  string(SHA256 hash "${text}")
  # Three hexadecimal digits are two of base 64. The two zeroes fill the last three up; "=" stands for what they alone make.
  string(REGEX MATCHALL "..." triples "${hash}00")
  set(encoded "")
  foreach(triple IN LISTS triples)
    math(EXPR high "0x${triple} >> 6")
    math(EXPR low "0x${triple} & 63")
    string(SUBSTRING "${alphabet}" ${high} 1 high)
    string(SUBSTRING "${alphabet}" ${low} 1 low)
    string(APPEND encoded "${high}${low}")
  endforeach()
  string(REGEX REPLACE ".$" "=" encoded "${encoded}")
  set(${variable} "sha256-${encoded}" PARENT_SCOPE)
endfunction()

read_text(page report.html)
read_text(style report.css)
read_text(script report.js)
policy_source(style_source "${style}")
policy_source(script_source "${script}")
foreach(part style_source script_source style script)
  string(REPLACE "{{${part}}}" "${${part}}" page "${page}")
endforeach()
string(HEX "${page}" bytes)
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
# Lines of some 32 characters of the page.
string(REGEX REPLACE "((.......){32})" "\\1\n" bytes "${bytes}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/skeleton.cpp.in" "${output}" @ONLY)
