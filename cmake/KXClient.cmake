# Calls for a client's CMake files, beside kx_file_version.

# kx_resources(<target> <TYPE>/<NAME> <file> [<TYPE>/<NAME> <file>]...)
#
# Links files into a program or library as resources: what FindResourceA finds by type and name under the null
# handle, such as IMAGE/101 for CKXGdiplusImage::Load(101), BITMAP/7, or STRING/12 for LoadStringA (a text file in
# UTF-8). Files are named from the current source directory. Needs glib-compile-resources and the headers of
# gio-2.0 (libglib2.0-dev).
function(kx_resources target)
    find_program(KX_COMPILE_RESOURCES glib-compile-resources REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(KX_GIO REQUIRED IMPORTED_TARGET gio-2.0)
    set(rest ${ARGN})
    while(rest)
        list(POP_FRONT rest resource file)
        if(NOT resource MATCHES "^[^/]+/[^/]+$" OR file STREQUAL "")
            message(FATAL_ERROR "kx_resources: '${resource}' '${file}' is no TYPE/NAME with its file")
        endif()
        get_filename_component(file "${file}" ABSOLUTE)
        list(APPEND files "${file}")
        string(APPEND entries "<file alias='${resource}'>${file}</file>")
    endwhile()
    set(list "${CMAKE_CURRENT_BINARY_DIR}/${target}.resources.xml")
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.resources.cpp")
    string(REPLACE "&" "&amp;" entries "${entries}")
    file(CONFIGURE OUTPUT "${list}" CONTENT "<gresources><gresource prefix='/'>@entries@</gresource></gresources>\n" @ONLY)
    string(MAKE_C_IDENTIFIER "${target}_resources" name)
    add_custom_command(OUTPUT "${source}" DEPENDS "${list}" ${files} VERBATIM
        COMMAND "${KX_COMPILE_RESOURCES}" --generate-source --internal --c-name "${name}" --sourcedir=/
            "--target=${source}" "${list}")
    set_source_files_properties("${source}" PROPERTIES COMPILE_OPTIONS -w)
    target_sources(${target} PRIVATE "${source}")
    target_link_libraries(${target} PRIVATE PkgConfig::KX_GIO)
endfunction()

# kx_crash_reporter(<target> [DESTINATION <directory>])
#
# Puts KXCrashReport.exe, which CKXCrashDumper starts, beside a program: where it is built, and where it is installed,
# which is <directory>, by default that of programs. A directory that the reporter's own package has put it into,
# such as /usr/bin, gets no second one: there the client's package depends on kxcommonclass-tools.
function(kx_crash_reporter target)
    cmake_parse_arguments(PARSE_ARGV 1 kx "" DESTINATION "")
    if(NOT TARGET KXCommonClass::KXCrashReport)
        message(FATAL_ERROR "kx_crash_reporter: KXCommonClass was installed without KXCrashReport.exe")
    endif()
    get_target_property(reporter KXCommonClass::KXCrashReport LOCATION)
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
        COMMAND "${CMAKE_COMMAND}" -E copy_if_different "${reporter}" "$<TARGET_FILE_DIR:${target}>")
    include(GNUInstallDirs)
    if(NOT kx_DESTINATION)
        set(kx_DESTINATION "${CMAKE_INSTALL_BINDIR}")
    endif()
    install(CODE "
        set(directory \"${kx_DESTINATION}\")
        cmake_path(ABSOLUTE_PATH directory BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
        cmake_path(COMPARE \"\${directory}/KXCrashReport.exe\" EQUAL \"${reporter}\" there)
        if(NOT there)
            file(INSTALL \"${reporter}\" DESTINATION \"\${directory}\" TYPE PROGRAM)
        endif()")
endfunction()
