# Run by cpack on the packages that it has made: what Debian's rules ask for and cpack of CMake 3.25 can't say.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(dir "${package}.tree")
    file(REMOVE_RECURSE "${dir}")
    execute_process(COMMAND dpkg-deb -R "${package}" "${dir}" COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE "${dir}/DEBIAN/postinst" "${dir}/DEBIAN/postrm") # they call ldconfig, and there is a trigger for it
    get_filename_component(name "${package}" NAME)
    string(REGEX REPLACE "_.*" "" name "${name}")
    file(READ "${dir}/DEBIAN/control" control)
    string(STRIP "${control}" control)
    execute_process(COMMAND du -sk --exclude=DEBIAN "${dir}" OUTPUT_VARIABLE size) # cpack counts links as their files
    string(REGEX MATCH "^[0-9]+" size "${size}")
    string(REGEX REPLACE "Installed-Size: [0-9]+" "Installed-Size: ${size}" control "${control}")
    file(WRITE "${dir}/DEBIAN/control" "${control}\nMulti-Arch: ${CPACK_KX_MULTIARCH_${name}}\n")
    execute_process(COMMAND dpkg-deb --root-owner-group -b "${dir}" "${package}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE "${dir}")
endforeach()
