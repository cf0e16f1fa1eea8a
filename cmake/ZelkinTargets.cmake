# Settings every target of ours shares: warnings on our code, and the library versioning.

function(zelkin_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()

function(zelkin_library target)
    zelkin_warnings(${target})
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
endfunction()

# A public header folder: used from the source tree while building, from include/ once installed.
function(zelkin_public_headers target dir)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${dir}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    install(DIRECTORY ${dir}/zelkin DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
endfunction()

# Sanitizer options for tests and for every program a test starts, which inherits them. Any report fails the test
# with an exit status none of our programs uses; only the leaks of Qt and the system libraries named in the
# suppression file are forgiven. Set as ENVIRONMENT_MODIFICATION, so a test's own ENVIRONMENT cannot drop them.
function(zelkin_test_environment)
    if(NOT ZELKIN_SANITIZE)
        return()
    endif()
    set(report "halt_on_error=1:print_stacktrace=1:exitcode=86")
    set_property(TEST ${ARGN} APPEND PROPERTY ENVIRONMENT_MODIFICATION
        "ASAN_OPTIONS=set:${report}:detect_leaks=1"
        "UBSAN_OPTIONS=set:${report}"
        "LSAN_OPTIONS=set:suppressions=${PROJECT_SOURCE_DIR}/tests/lsan-suppressions.txt:print_suppressions=0")
endfunction()
