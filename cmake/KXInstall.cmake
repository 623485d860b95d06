# cmake --install: library, headers, find_package files and the pkg-config file, in components: the library that a client
# runs with (Runtime), its modules that bring the most along (Http, Services, X11), what it is built with (Development),
# and the programs (Tools).
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Development)

install(TARGETS KXCommonClass EXPORT KXCommonClassTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development)
if(KX_MODULES)
    set(KX_MODULE_COMPONENTS Http Services X11)
    foreach(name IN LISTS KX_MODULE_NAMES)
        set(component Runtime)
        foreach(one IN LISTS KX_MODULE_COMPONENTS)
            string(TOLOWER ${one} lower)
            if(lower STREQUAL name)
                set(component ${one})
            endif()
        endforeach()
        install(TARGETS kx_module_${name}
            LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/KXCommonClass" COMPONENT ${component})
    endforeach()
endif()
install(DIRECTORY include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/KXCommonClass" FILES_MATCHING PATTERN "*.h")

set(KX_CONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/KXCommonClass")
install(EXPORT KXCommonClassTargets NAMESPACE KXCommonClass:: DESTINATION "${KX_CONFIG_DIR}")
configure_package_config_file(cmake/KXCommonClassConfig.cmake.in KXCommonClassConfig.cmake
    INSTALL_DESTINATION "${KX_CONFIG_DIR}")
write_basic_package_version_file(KXCommonClassConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KXCommonClassConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/KXCommonClassConfigVersion.cmake"
              cmake/KXClient.cmake cmake/KXFileVersion.cmake cmake/KXFileVersion.cpp.in
    DESTINATION "${KX_CONFIG_DIR}")

# Named from where the file lies, so that `cmake --install --prefix` may put it all anywhere.
file(RELATIVE_PATH KX_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/KXCommonClass.pc.in KXCommonClass.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KXCommonClass.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# kx_install_program(<target> <section 1 manual page>)
find_program(KX_GZIP gzip REQUIRED)
function(kx_install_program target page)
    target_link_options(${target} PRIVATE LINKER:-z,now)
    install(TARGETS ${target} EXPORT KXCommonClassTargets
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT Tools)
    get_filename_component(name "${page}" NAME)
    add_custom_command(OUTPUT ${name}.gz DEPENDS "${page}" VERBATIM
        COMMAND "${KX_GZIP}" -9nc "${CMAKE_CURRENT_SOURCE_DIR}/${page}" > ${name}.gz)
    add_custom_target(${target}_manual DEPENDS ${name}.gz)
    add_dependencies(${target} ${target}_manual)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${name}.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT Tools)
endfunction()
