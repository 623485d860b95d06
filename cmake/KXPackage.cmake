# cpack: Debian packages, one for each component.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kxcommonclass)
set(CPACK_PACKAGE_VENDOR "The KXCommonClass developers")
set(CPACK_PACKAGE_CONTACT "The KXCommonClass developers <developers@kxcommonclass.invalid>")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}") # where kx finds the library
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkxcommonclass${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "common classes for desktop clients
Skins, languages, drawing, log, downloads, statistics, crash reports, INI and
XML values, files and services for the desktop clients of an English-learning
product. With the reporter that a crash starts.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkxcommonclass-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "common classes for desktop clients, to build with
Headers, CMake and pkg-config files of libkxcommonclass.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)

# What Debian's own checks ask of a package beyond its files.
file(WRITE "${PROJECT_BINARY_DIR}/package/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")
string(TIMESTAMP KX_TODAY "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE "${PROJECT_BINARY_DIR}/package/changelog"
    "kxcommonclass (${PROJECT_VERSION}) unstable; urgency=medium\n\n  * The changes are in CHANGELOG.md of the sources.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${KX_TODAY}\n")
execute_process(COMMAND gzip -9nf changelog WORKING_DIRECTORY "${PROJECT_BINARY_DIR}/package")
foreach(KX_COMPONENT Runtime Development)
    string(TOUPPER ${KX_COMPONENT} KX_UPPER)
    install(FILES "${PROJECT_BINARY_DIR}/package/changelog.gz" cmake/copyright
        DESTINATION "share/doc/${CPACK_DEBIAN_${KX_UPPER}_PACKAGE_NAME}" COMPONENT ${KX_COMPONENT})
endforeach()
include(CPack)
