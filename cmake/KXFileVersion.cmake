# kx_file_version(<target> <major>.<minor>.<revision>.<build>)
#
# Puts a version note into the target's binary, which CKXExeFileInfo::GetFileInfo reads back. Each of the
# four numbers is 0 to 65535; numbers left out are 0. The note is an ELF note of name "KXVersion", type 1,
# with a descriptor of four 32-bit words in the order of the argument.
set(KX_FILE_VERSION_TEMPLATE "${CMAKE_CURRENT_LIST_DIR}/KXFileVersion.cpp.in")

function(kx_file_version target version)
    string(REPLACE "." ";" numbers "${version}")
    foreach(name KX_MAJOR KX_MINOR KX_REVISION KX_BUILD)
        list(POP_FRONT numbers value)
        if(value STREQUAL "")
            set(value 0)
        endif()
        if(NOT value MATCHES "^[0-9]+$" OR value GREATER 65535)
            message(FATAL_ERROR "kx_file_version: '${version}' is no version of numbers from 0 to 65535")
        endif()
        set(${name} ${value})
    endforeach()
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.version.cpp")
    configure_file("${KX_FILE_VERSION_TEMPLATE}" "${source}" @ONLY)
    target_sources(${target} PRIVATE "${source}")
endfunction()
