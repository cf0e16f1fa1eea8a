# Runs a fuzzer for a fixed time over a fresh copy of its seeds, so the seeds in the build tree stay as generated.
# Expects FUZZER, SEEDS, SCRATCH and SECONDS; FLAGS (libFuzzer options, separated by commas) is optional.
file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}/corpus")
file(GLOB seeds "${SEEDS}/*")
if(NOT seeds)
    message(FATAL_ERROR "No seeds in ${SEEDS}")
endif()
file(COPY ${seeds} DESTINATION "${SCRATCH}/corpus")
string(REPLACE "," ";" flags "${FLAGS}")
execute_process(
    COMMAND "${FUZZER}" "${SCRATCH}/corpus" -max_total_time=${SECONDS} -print_final_stats=1
            "-artifact_prefix=${SCRATCH}/" ${flags}
    WORKING_DIRECTORY "${SCRATCH}"
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${FUZZER} failed (${result}); the crashing input is in ${SCRATCH}")
endif()
