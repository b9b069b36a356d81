# Fails when a public header under src/seqlattice is missing from the umbrella
# header seqlattice.h.
file(READ "${SOURCE_DIR}/src/seqlattice/seqlattice.h" umbrella)
file(GLOB_RECURSE headers RELATIVE "${SOURCE_DIR}/src"
     "${SOURCE_DIR}/src/seqlattice/*/*.h")
set(missing "")
foreach(header ${headers})
  if(header MATCHES "_test(_util)?\\.h$" OR header MATCHES "/internal/")
    continue()
  endif()
  string(FIND "${umbrella}" "#include \"${header}\"" at)
  if(at EQUAL -1)
    list(APPEND missing "${header}")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "seqlattice.h does not include: ${missing}")
endif()
