# The program of the unpacked ZIP, called from elsewhere, says its version and lists what the build's own program lists.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
unpack("unpacked in a folder with blanks")
without_help()

run(${emulator} "${unpacked}/bin/driverlist.exe" --version)
equal("version" "${output}" "driverlist ${version}\n")

foreach(mode by-device registered all)
  run(${emulator} ${build}/bin/driverlist.exe --mode ${mode} --format csv)
  set(expected "${output}")
  run(${emulator} "${unpacked}/bin/driverlist.exe" --mode ${mode} --format csv)
  equal("drivers (${mode})" "${output}" "${expected}")
endforeach()
