# Installs the built library into a scratch prefix, then configures, builds and
# runs a small host project that finds it with find_package(seqlattice).
set(prefix "${BINARY_DIR}/install-check/prefix")
set(consumer_build "${BINARY_DIR}/install-check/consumer")
file(REMOVE_RECURSE "${BINARY_DIR}/install-check")
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix}
                RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "install failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${consumer_build}
                        -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix}
                RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "consumer configure failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${consumer_build} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "consumer build failed")
endif()
execute_process(COMMAND ${consumer_build}/consumer RESULT_VARIABLE rc
                OUTPUT_VARIABLE out)
if(NOT rc EQUAL 0 OR NOT out MATCHES "ok")
  message(FATAL_ERROR "consumer run failed: ${rc} ${out}")
endif()
