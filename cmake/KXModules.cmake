# The modules: for each the folder of its sources in the platform layer, and the libraries that it alone stands on.
#
# With KX_MODULES a module is a shared object in the folder KXCommonClass beside the library, which loads it at its
# first use; without, all is one library.
option(KX_MODULES "Build families that stand on large libraries as modules that are loaded at their first use" ON)

set(KX_MODULE_NAMES http letters pictures services shell x11 xml)
set(KX_MODULE_http http/curl CURL)
set(KX_MODULE_letters gdi/letters FREETYPE FONTCONFIG)
set(KX_MODULE_pictures gdiplus/codecs PNG JPEG TIFF GIF)
set(KX_MODULE_services services/systemd SYSTEMD)
set(KX_MODULE_shell shell/gio GIO)
set(KX_MODULE_x11 window/x11 XCB)
set(KX_MODULE_xml xml/libxml XML)
foreach(name IN LISTS KX_MODULE_NAMES)
    list(POP_FRONT KX_MODULE_${name} folder)
    set(KX_MODULE_${name}_FOLDER platform/${folder}/)
    list(TRANSFORM KX_MODULE_${name} PREPEND PkgConfig:: OUTPUT_VARIABLE KX_MODULE_${name}_LIBRARIES)
    list(TRANSFORM KX_MODULE_${name}_LIBRARIES REPLACE PkgConfig::GIF GIF::GIF)
endforeach()

# kx_take_modules(<list of the library's sources> <list of its libraries>)
#
# Takes the modules' sources off the first list, or without KX_MODULES adds their libraries to the second.
macro(kx_take_modules sources libraries)
    set_source_files_properties(platform/module/Door.cpp PROPERTIES COMPILE_DEFINITIONS KX_VERSION="${PROJECT_VERSION}")
    foreach(name IN LISTS KX_MODULE_NAMES)
        set(KX_MODULE_${name}_SOURCES ${${sources}})
        list(FILTER KX_MODULE_${name}_SOURCES INCLUDE REGEX "^${KX_MODULE_${name}_FOLDER}")
        set_source_files_properties(${KX_MODULE_${name}_SOURCES} PROPERTIES
            COMPILE_DEFINITIONS KX_VERSION="${PROJECT_VERSION}")
        if(KX_MODULES)
            list(FILTER ${sources} EXCLUDE REGEX "^${KX_MODULE_${name}_FOLDER}")
        else()
            list(APPEND ${libraries} ${KX_MODULE_${name}_LIBRARIES})
        endif()
    endforeach()
endmacro()

set(KX_MODULE_http_WORDS "downloads and statistics")
set(KX_MODULE_letters_WORDS "text that is drawn")
set(KX_MODULE_pictures_WORDS "PNG, JPEG, GIF and TIFF")
set(KX_MODULE_services_WORDS "the control of services")
set(KX_MODULE_shell_WORDS "types and icons of files, resource bundles")
set(KX_MODULE_x11_WORDS "windows on an X server")
set(KX_MODULE_xml_WORDS "XML documents")

# kx_dlopen_note(<module> <variable>)
#
# Makes the source of the note that a module's file carries and gives its name: the libraries by their own names.
function(kx_dlopen_note name source)
    set(KX_NOTE_WORDS "${KX_MODULE_${name}_WORDS}")
    foreach(library IN LISTS KX_MODULE_${name})
        foreach(file IN LISTS ${library}_LINK_LIBRARIES ${library}_LIBRARY)
            if(EXISTS "${file}")
                execute_process(COMMAND "${CMAKE_READELF}" -d "${file}" OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
                string(REGEX MATCH "soname: \\[([^]]+)\\]" soname "${dynamic}")
                list(APPEND sonames "\\\"${CMAKE_MATCH_1}\\\"")
            endif()
        endforeach()
    endforeach()
    list(REMOVE_DUPLICATES sonames)
    string(REPLACE ";" "," KX_NOTE_SONAMES "${sonames}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/KXDlopenNote.cpp.in" "${PROJECT_BINARY_DIR}/notes/${name}.cpp" @ONLY)
    set(${source} "${PROJECT_BINARY_DIR}/notes/${name}.cpp" PARENT_SCOPE)
endfunction()

# The target kx_modules stands for all of them: what runs from the build tree depends on it.
function(kx_add_modules)
    add_custom_target(kx_modules)
    if(NOT KX_MODULES)
        return()
    endif()
    foreach(name IN LISTS KX_MODULE_NAMES)
        set(target kx_module_${name})
        kx_dlopen_note(${name} note)
        add_library(${target} MODULE ${KX_MODULE_${name}_SOURCES} "${note}")
        set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name}
            LIBRARY_OUTPUT_DIRECTORY "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/KXCommonClass")
        target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
        target_link_libraries(${target} PRIVATE KXCommonClass kx_flags kx_hardened Threads::Threads
            PkgConfig::PIXMAN ${KX_MODULE_${name}_LIBRARIES}) # pixman's header is in the surfaces'
        add_dependencies(kx_modules ${target})
        target_link_options(${target} PRIVATE LINKER:-z,now LINKER:-z,defs LINKER:--as-needed)
    endforeach()
endfunction()
