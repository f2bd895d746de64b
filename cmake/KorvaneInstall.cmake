# cmake --install: the libraries, their headers, the tool, and a package that other projects
# find with find_package(Korvane).
include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY KORVANE_LIBRARIES)
install(TARGETS ${libraries} EXPORT KorvaneTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS korvane_tool EXPORT KorvaneTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# The folders keep their places below include/Korvane; the chief headers stand at its top.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Korvane
        FILES_MATCHING PATTERN "*.h")
install(DIRECTORY ${PROJECT_BINARY_DIR}/include/Korvane DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        PATTERN Korvane.h EXCLUDE)
install(EXPORT KorvaneTargets NAMESPACE Korvane:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Korvane)

configure_package_config_file(cmake/KorvaneConfig.cmake.in ${PROJECT_BINARY_DIR}/KorvaneConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Korvane)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KorvaneConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KorvaneConfig.cmake ${PROJECT_BINARY_DIR}/KorvaneConfigVersion.cmake
              cmake/KorvaneRecords.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Korvane)
install(FILES README.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
