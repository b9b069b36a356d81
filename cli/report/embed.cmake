# Writes the report page's source files into a C++ source file as raw string
# literals (run at build time: cmake -DASSET_DIR=... -DTEMPLATE=...
# -DOUTPUT=... -P embed.cmake). configure_file inserts each file's text as it
# stands; the delimiter below must not occur in any of them.
foreach(asset IN ITEMS report.html report.css report.js)
  file(READ "${ASSET_DIR}/${asset}" text)
  string(FIND "${text}" ")seqlattice_asset\"" clash)
  if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${asset} holds the raw string delimiter")
  endif()
  string(MAKE_C_IDENTIFIER "${asset}" name)
  set(${name} "${text}")
endforeach()
configure_file("${TEMPLATE}" "${OUTPUT}" @ONLY)
