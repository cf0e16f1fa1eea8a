# Fails when PROGRAM would load, directly or through another library, one of Qt's GUI libraries, or Assimp, which
# only the skeleton reader may load.
execute_process(COMMAND ldd "${PROGRAM}" OUTPUT_VARIABLE libraries RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "ldd cannot read ${PROGRAM}")
endif()
if(NOT libraries MATCHES "libQt6Core")
    message(FATAL_ERROR "ldd lists no Qt library for ${PROGRAM}:\n${libraries}")
endif()
string(REGEX MATCHALL "(libQt6(Gui|Widgets|DBus|OpenGL)|libassimp)[^ ]*" gui "${libraries}")
if(gui)
    message(FATAL_ERROR "${PROGRAM} loads ${gui}")
endif()
