# Script mode: install, configure the consumer against the prefix, build it and run it.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Failed (${result}): ${ARGN}")
    endif()
endfunction()

# The package has nothing to do with the hour, but CMake and Ninja compare file times with the clock:
# under a clock faked ahead of the file system's (libfaketime, as the suite's clock runs use), Ninja
# finds its build.ninja forever dirty and gives up. The steps below run on the real clock.
if(DEFINED ENV{LD_PRELOAD})
    string(REGEX REPLACE "[: ]+" ";" preload "$ENV{LD_PRELOAD}")
    list(FILTER preload EXCLUDE REGEX "faketime")
    list(JOIN preload ":" preload)
    set(ENV{LD_PRELOAD} "${preload}")
endif()
unset(ENV{FAKETIME})

file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${CONSUMER_BUILD} -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${PREFIX} -DQt5_DIR=${Qt5_DIR})
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD})
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${PREFIX}/lib:${PREFIX}/lib64
    ${CONSUMER_BUILD}/consumer)
