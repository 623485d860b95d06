# The modules: for each the sources in the platform layer, by how their paths begin, and the libraries that they alone
# stand on.
#
# With KX_MODULES a module is a shared object in the folder KXCommonClass beside the library, which loads it at its
# first use; without, all is one library.
option(KX_MODULES "Build families that stand on large libraries as modules that are loaded at their first use" ON)

set(KX_MODULE_NAMES http services xml)
set(KX_MODULE_http_SOURCES platform/http/curl/)
set(KX_MODULE_http_LIBRARIES PkgConfig::CURL)
set(KX_MODULE_services_SOURCES platform/services/systemd/)
set(KX_MODULE_services_LIBRARIES PkgConfig::SYSTEMD)
set(KX_MODULE_xml_SOURCES "platform/xml/(Attr|Ch|Doc|Enc|Names|Node|Parse|Tree|Write|XPath)")
set(KX_MODULE_xml_LIBRARIES PkgConfig::XML)

# kx_take_modules(<list of the library's sources> <list of its libraries>)
#
# Takes the modules' sources off the first list, or without KX_MODULES adds their libraries to the second.
macro(kx_take_modules sources libraries)
    set_source_files_properties(platform/module/Door.cpp PROPERTIES COMPILE_DEFINITIONS KX_VERSION="${PROJECT_VERSION}")
    foreach(name IN LISTS KX_MODULE_NAMES)
        set(pattern "^${KX_MODULE_${name}_SOURCES}")
        set(KX_MODULE_${name}_SOURCES ${${sources}})
        list(FILTER KX_MODULE_${name}_SOURCES INCLUDE REGEX "${pattern}")
        set_source_files_properties(${KX_MODULE_${name}_SOURCES} PROPERTIES
            COMPILE_DEFINITIONS KX_VERSION="${PROJECT_VERSION}")
        if(KX_MODULES)
            list(FILTER ${sources} EXCLUDE REGEX "${pattern}")
        else()
            list(APPEND ${libraries} ${KX_MODULE_${name}_LIBRARIES})
        endif()
    endforeach()
endmacro()

# The target kx_modules stands for all of them: what runs from the build tree depends on it.
function(kx_add_modules)
    add_custom_target(kx_modules)
    if(NOT KX_MODULES)
        return()
    endif()
    foreach(name IN LISTS KX_MODULE_NAMES)
        set(target kx_module_${name})
        add_library(${target} MODULE ${KX_MODULE_${name}_SOURCES})
        set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name}
            LIBRARY_OUTPUT_DIRECTORY "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/KXCommonClass")
        target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
        target_link_libraries(${target} PRIVATE KXCommonClass kx_flags kx_hardened Threads::Threads ${KX_MODULE_${name}_LIBRARIES})
        add_dependencies(kx_modules ${target})
        target_link_options(${target} PRIVATE LINKER:-z,now LINKER:-z,defs LINKER:--as-needed)
    endforeach()
endfunction()
