include(CMakePackageConfigHelpers)

install(TARGETS zelkin_solver zelkin_characterization
    EXPORT ZelkinTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT ZelkinTargets
    NAMESPACE Zelkin::
    FILE ZelkinTargets.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zelkin)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZelkinConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/ZelkinConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zelkin)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZelkinConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/ZelkinConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/ZelkinConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zelkin)
