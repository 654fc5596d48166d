# Script mode: install, configure the consumer against the prefix, build it and run it.
#
# Each run takes a fresh folder of its own under SCRATCH for the prefix and the consumer's build, so
# that two runs of the suite in one build tree, side by side, never install into or build in each
# other's folders, and removes it when it is done.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        file(REMOVE_RECURSE ${RUN_DIR})
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

# mktemp draws the folder's name from the system's randomness, not from the clock, which a faked
# clock gives every run alike.
file(MAKE_DIRECTORY ${SCRATCH})
execute_process(COMMAND mktemp -d ${SCRATCH}/run-XXXXXX OUTPUT_VARIABLE RUN_DIR
                OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE made)
if(NOT made EQUAL 0 OR NOT IS_DIRECTORY "${RUN_DIR}")
    message(FATAL_ERROR "Cannot make a scratch folder under ${SCRATCH}")
endif()
set(PREFIX ${RUN_DIR}/prefix)
set(CONSUMER_BUILD ${RUN_DIR}/consumer-build)

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${CONSUMER_BUILD} -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${PREFIX} -DQt5_DIR=${Qt5_DIR})
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD})
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${PREFIX}/lib:${PREFIX}/lib64
    ${CONSUMER_BUILD}/consumer)
file(REMOVE_RECURSE ${RUN_DIR})
