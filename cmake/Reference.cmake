# The reference of the library, made from its headers: the target "docs" writes docs/html. A name without documentation fails it.
find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_WARN_NO_PARAMDOC NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_HIDE_UNDOC_RELATIONS NO)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED DRIVERINFO_API= DRIVERINVENTORY_API= LOGGING_API= PCIINFO_API=)
doxygen_add_docs(docs
  src/module/osinfos/driverinfo/driverinfo.h
  src/module/osinfos/pciinfo/pciinfo.h
  src/module/logging/log.h
  src/module/interface/driverinventory.h
  COMMENT "Making the reference")
