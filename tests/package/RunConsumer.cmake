# Script mode: install, configure the consumer against the prefix, build it and run it.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Failed (${result}): ${ARGN}")
    endif()
endfunction()

file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${CONSUMER_BUILD} -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${PREFIX} -DQt5_DIR=${Qt5_DIR})
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD})
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${PREFIX}/lib:${PREFIX}/lib64
    ${CONSUMER_BUILD}/consumer)
