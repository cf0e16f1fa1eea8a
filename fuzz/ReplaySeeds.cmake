# Runs a fuzz target once over each of its seeds: the same inputs every time, so the test run stays repeatable
# (scripts/fuzz.sh is what searches for new ones). Expects FUZZER and SEEDS; EXTRA (a glob, optional) adds files
# outside the project when they are there.
file(GLOB seeds "${SEEDS}/*")
if(EXTRA)
    file(GLOB extra ${EXTRA})
    list(APPEND seeds ${extra})
endif()
if(NOT seeds)
    message(FATAL_ERROR "No seeds in ${SEEDS}")
endif()
execute_process(COMMAND "${FUZZER}" ${seeds} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${FUZZER} failed (${result}) on one of its seeds")
endif()
