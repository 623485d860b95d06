# Compile options of this project's own targets; nothing here reaches a client.
add_library(kx_flags INTERFACE)
target_compile_options(kx_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wformat=2 $<$<BOOL:${KX_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(kx_flags INTERFACE -Wthread-safety)
else()
    # g++ 12 sees overlaps in std::string's own code that can't happen.
    target_compile_options(kx_flags INTERFACE -Wno-restrict)
    if(KX_PCH) # nor, out of precompiled headers, that the code is the library's at all
        target_compile_options(kx_flags INTERFACE -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
    endif()
endif()
# The flags with which Debian hardens programs, for what is shipped.
add_library(kx_hardened INTERFACE)
target_link_options(kx_hardened INTERFACE LINKER:-z,relro)
if(NOT KX_SANITIZE)
    target_compile_options(kx_hardened INTERFACE -fstack-protector-strong
        $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

if(KX_SANITIZE)
    add_compile_options(-fsanitize=${KX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${KX_SANITIZE})
    add_compile_definitions(KX_SANITIZED) # blocks that end are not kept for the next use
endif()
