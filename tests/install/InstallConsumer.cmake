file(REMOVE_RECURSE "${WORK_DIR}")

function(run_step what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what} failed (${result}):\n${out}\n${err}")
    endif()
    set(STEP_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

run_step("install" ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
run_step("configure" ${CMAKE_COMMAND} -S "${CONSUMER_SOURCE}" -B "${WORK_DIR}/build" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix" "-DCMAKE_CXX_COMPILER=${COMPILER}"
    "-DCMAKE_CXX_FLAGS=${SANITIZER_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${SANITIZER_FLAGS}")
run_step("build" ${CMAKE_COMMAND} --build "${WORK_DIR}/build")
run_step("run" "${WORK_DIR}/build/consumer")
if(NOT STEP_OUTPUT MATCHES "consumer: ok")
    message(FATAL_ERROR "unexpected output: ${STEP_OUTPUT}")
endif()
message(STATUS "${STEP_OUTPUT}")

# The installed command line finds the installed skeleton reader, not the build tree's.
run_step("installed zelkin" ${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${WORK_DIR}/prefix/lib"
    "${WORK_DIR}/prefix/bin/zelkin" bones "${SAMPLE_SKELETON}")
if(NOT STEP_OUTPUT MATCHES "LeftForeArm")
    message(FATAL_ERROR "the installed zelkin read no skeleton: ${STEP_OUTPUT}")
endif()
