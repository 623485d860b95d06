# cmake --install: library, headers, find_package files and the pkg-config file, in two components: what a client
# runs with (Runtime), and what it is built with (Development).
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Development)

install(TARGETS KXCommonClass EXPORT KXCommonClassTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development)
install(DIRECTORY include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/KXCommonClass" FILES_MATCHING PATTERN "*.h")

set(KX_CONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/KXCommonClass")
install(EXPORT KXCommonClassTargets NAMESPACE KXCommonClass:: DESTINATION "${KX_CONFIG_DIR}")
configure_package_config_file(cmake/KXCommonClassConfig.cmake.in KXCommonClassConfig.cmake
    INSTALL_DESTINATION "${KX_CONFIG_DIR}")
write_basic_package_version_file(KXCommonClassConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KXCommonClassConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/KXCommonClassConfigVersion.cmake"
              cmake/KXFileVersion.cmake cmake/KXFileVersion.cpp.in
    DESTINATION "${KX_CONFIG_DIR}")

# Named from where the file lies, so that `cmake --install --prefix` may put it all anywhere.
file(RELATIVE_PATH KX_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/KXCommonClass.pc.in KXCommonClass.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KXCommonClass.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
