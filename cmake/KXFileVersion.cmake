# kx_file_version(<target> <major>.<minor>.<revision>.<build>)
#
# Puts a version note into the binary of a program or shared library written in C++, which
# CKXExeFileInfo::GetFileInfo reads back. Each of the four numbers is 0 to 65535; numbers left out are 0. The
# note is an ELF note of name "KXVersion", type 1, with a descriptor of four 32-bit words in the order of the
# argument.
function(kx_file_version target version)
    if(NOT version MATCHES "^[0-9]+(\\.[0-9]+)?(\\.[0-9]+)?(\\.[0-9]+)?$")
        message(FATAL_ERROR "kx_file_version: '${version}' is no version of up to four numbers")
    endif()
    string(REPLACE "." ";" numbers "${version};0;0;0")
    foreach(name KX_MAJOR KX_MINOR KX_REVISION KX_BUILD)
        list(POP_FRONT numbers value)
        if(value GREATER 65535)
            message(FATAL_ERROR "kx_file_version: '${version}' has a number above 65535")
        endif()
        string(REGEX REPLACE "^0+(.)" "\\1" ${name} "${value}") # the assembler takes 010 for eight
    endforeach()
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.version.cpp")
    configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/KXFileVersion.cpp.in" "${source}" @ONLY)
    target_sources(${target} PRIVATE "${source}")
endfunction()
