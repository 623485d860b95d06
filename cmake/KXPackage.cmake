# cpack: Debian packages, one for each component.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kxcommonclass)
set(CPACK_PACKAGE_VENDOR "The KXCommonClass developers")
set(CPACK_PACKAGE_CONTACT "The KXCommonClass developers <developers@kxcommonclass.invalid>")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime ${KX_MODULE_COMPONENTS} Development)
if(KX_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL Tools)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}") # where kx finds the library
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)

set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/KXDebian.cmake")

# kx_package(<component> <package> <section> <value of Multi-Arch> <description>)
function(kx_package component package section multiarch description)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(CPACK_KX_MULTIARCH_${package} ${multiarch} PARENT_SCOPE)
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${description}" PARENT_SCOPE)
    install(FILES "${PROJECT_BINARY_DIR}/package/changelog.gz" DESTINATION "share/doc/${package}"
        COMPONENT ${component})
    install(FILES LICENSE DESTINATION "share/doc/${package}" COMPONENT ${component} RENAME copyright)
endfunction()
set(KX_PACKAGE_WORDS_Http "downloads
Downloads and statistics, for libkxcommonclass${PROJECT_VERSION_MAJOR}, which loads this
module at their first use.")
set(KX_PACKAGE_WORDS_Services "services
The control of services, for libkxcommonclass${PROJECT_VERSION_MAJOR}, which loads this
module at its first use.")
set(KX_PACKAGE_WORDS_X11 "windows
Windows on an X server, for libkxcommonclass${PROJECT_VERSION_MAJOR}, which loads this
module with the first of them. Without it they appear on a desktop in memory.")
kx_package(Runtime libkxcommonclass${PROJECT_VERSION_MAJOR} libs same "common classes for desktop clients
Skins, languages, drawing, log, downloads, statistics, crash reports, INI and
XML values, files and services for the desktop clients of an English-learning
product.")
set(KX_RECOMMENDS "fonts-wqy-microhei | fonts-noto-cjk, shared-mime-info")
foreach(component IN LISTS KX_MODULE_COMPONENTS)
    string(TOLOWER ${component} name)
    set(package libkxcommonclass${PROJECT_VERSION_MAJOR}-${name})
    kx_package(${component} ${package} libs same "common classes for desktop clients, ${KX_PACKAGE_WORDS_${component}}")
    string(TOUPPER ${component} upper)
    set(CPACK_COMPONENT_${upper}_DEPENDS Runtime)
    string(APPEND KX_RECOMMENDS ", ${package}")
endforeach()
kx_package(Development libkxcommonclass-dev libdevel same "common classes for desktop clients, to build with
Headers, CMake and pkg-config files of libkxcommonclass${PROJECT_VERSION_MAJOR}, for C++20 and later.")
kx_package(Tools kxcommonclass-tools devel foreign "common classes for desktop clients, their programs
KXCrashReport.exe, which reports the crash of a client in /usr/bin or of one
that has it in its own directory, and kx, which checks, makes and shows skins
and languages, logs and crash reports.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "${KX_RECOMMENDS}")
set(CPACK_COMPONENT_TOOLS_DEPENDS Runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime Tools)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libglib2.0-dev") # for kx_resources

# Debian's own checks ask this of a package beyond its files.
file(WRITE "${PROJECT_BINARY_DIR}/package/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")
# The version's own date: packages of several architectures have the same file.
file(WRITE "${PROJECT_BINARY_DIR}/package/changelog"
    "kxcommonclass (${PROJECT_VERSION}) unstable; urgency=medium\n\n  * The changes are in CHANGELOG.md of the sources.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  Thu, 26 Nov 2026 00:00:00 +0000\n")
execute_process(COMMAND gzip -9nf changelog WORKING_DIRECTORY "${PROJECT_BINARY_DIR}/package")
include(CPack)
