# Install rules: the shared library, its public headers, the licence and the CMake package
# TRV5Charts (targets in the namespace TRV5Charts::).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TRV5_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TRV5Charts)

install(TARGETS TRV5Charts EXPORT TRV5ChartsTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/trv5charts
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(EXPORT TRV5ChartsTargets
    NAMESPACE TRV5Charts::
    DESTINATION ${TRV5_PACKAGE_DIR})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TRV5ChartsConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TRV5ChartsConfig.cmake
    INSTALL_DESTINATION ${TRV5_PACKAGE_DIR})
# Before 1.0 a minor version may change the API.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TRV5ChartsConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TRV5ChartsConfig.cmake
              ${PROJECT_BINARY_DIR}/TRV5ChartsConfigVersion.cmake
    DESTINATION ${TRV5_PACKAGE_DIR})
