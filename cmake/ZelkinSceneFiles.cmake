# Skeleton files in a dozen formats, written at build time from the sample skeleton by Assimp's own exporters: the
# damaged-file tests and the scene fuzzers start from them, so nothing binary lives in the sources.
# ZELKIN_SCENE_FILES is their folder (one folder per format inside), zelkin_scene_files the target that writes them.
find_package(assimp REQUIRED)
# What writes skeleton files with Assimp, shared with the tests that write rigs of their own.
add_library(zelkin_scene_writing STATIC ${PROJECT_SOURCE_DIR}/tests/support/BinaryFbx.cpp
    ${PROJECT_SOURCE_DIR}/tests/support/SkinnedMesh.cpp)
zelkin_warnings(zelkin_scene_writing)
target_include_directories(zelkin_scene_writing PUBLIC ${PROJECT_SOURCE_DIR}/tests/support)
target_link_libraries(zelkin_scene_writing PUBLIC assimp::assimp Qt6::Core)

add_executable(make_scene_files ${PROJECT_SOURCE_DIR}/tests/support/make_scene_files.cpp)
zelkin_warnings(make_scene_files)
target_link_libraries(make_scene_files PRIVATE zelkin_scene_writing)

set(ZELKIN_SCENE_FILES ${PROJECT_BINARY_DIR}/scene_files)
set(sample ${PROJECT_SOURCE_DIR}/examples/sample_humanoid.bvh)
# Only a complete run touches the stamp. Assimp leaks on its own; a sanitized run forgives it that.
add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/scene_files.stamp
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${ZELKIN_SCENE_FILES}
    COMMAND ${CMAKE_COMMAND} -E env LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan-suppressions.txt
            $<TARGET_FILE:make_scene_files> ${sample} ${ZELKIN_SCENE_FILES}
    COMMAND ${CMAKE_COMMAND} -E touch ${PROJECT_BINARY_DIR}/scene_files.stamp
    DEPENDS make_scene_files ${sample}
    COMMENT "Writing skeleton files in every format the tests and fuzzers start from")
add_custom_target(zelkin_scene_files DEPENDS ${PROJECT_BINARY_DIR}/scene_files.stamp)
