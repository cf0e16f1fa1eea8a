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
