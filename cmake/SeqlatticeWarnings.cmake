# Warning flags shared by the library, its tests, tools and benchmarks.
function(seqlattice_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(SEQLATTICE_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
