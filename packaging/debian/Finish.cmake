# Runs in cpack after the packages are made: adds what cpack cannot. Libraries get a list of their
# symbols, and a trigger in place of scripts that call ldconfig.
cmake_minimum_required(VERSION 3.22)

# run(COMMAND...): ends cpack if the command fails
function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# add_fields(CONTROL PACKAGE): libraries of several architectures can be installed together.
# Development files cannot, since they contain paths of one.
function(add_fields control package)
    file(READ "${control}" text)
    string(STRIP "${text}" text)
    if(package MATCHES "^lib.*[0-9]$")
        string(REGEX REPLACE "(^|\n)(Architecture: [^\n]+)" "\\1\\2\nMulti-Arch: same" text "${text}")
    endif()
    file(WRITE "${control}" "${text}\n")
endfunction()

# add_documents(SHARE PACKAGE): debug symbols have the documents of what they are for
function(add_documents share package)
    string(REGEX REPLACE "-dbgsym$" "" documented "${package}")
    file(MAKE_DIRECTORY "${share}/doc")
    file(CREATE_LINK "${documented}" "${share}/doc/${package}" SYMBOLIC)
endfunction()

# add_sums(TREE): cpack writes wrong paths for debug symbols
function(add_sums tree)
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE "${tree}" "${tree}/usr/*")
    set(sums "")
    foreach(file IN LISTS files)
        if(NOT IS_SYMLINK "${tree}/${file}")
            file(MD5 "${tree}/${file}" sum)
            string(APPEND sums "${sum}  ${file}\n")
        endif()
    endforeach()
    file(WRITE "${tree}/DEBIAN/md5sums" "${sums}")
endfunction()

# add_symbols(TREE PACKAGE): what dpkg-shlibdeps finds in packages that use the library
function(add_symbols tree package)
    file(GLOB libraries "${tree}/usr/lib/${CPACK_CONNECTOR_ARCHITECTURE}/*.so.${CPACK_CONNECTOR_SOVERSION}")
    set(template "")
    foreach(library IN LISTS libraries)
        cmake_path(GET library FILENAME soname)
        string(REGEX REPLACE "^lib(.*)\\.so.*" "\\1" name "${soname}")
        file(READ "${CPACK_CONNECTOR_SOURCE_DIR}/packaging/debian/symbols/${name}" symbols)
        string(APPEND template "${soname} ${package} #MINVER#\n"
            "* Build-Depends-Package: libconnector-configuration-dev\n${symbols}")
    endforeach()
    file(WRITE "${tree}.symbols" "${template}")
    list(TRANSFORM libraries PREPEND -e)
    run(dpkg-gensymbols -c0 "-p${package}" "-v${CPACK_CONNECTOR_DEBIAN_VERSION}" "-P${tree}"
        "-I${tree}.symbols" "-O${tree}/DEBIAN/symbols" ${libraries})
    file(CHMOD "${tree}/DEBIAN/symbols" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

# finish(PACKAGE_FILE)
function(finish package_file)
    cmake_path(GET package_file FILENAME file)
    string(REGEX REPLACE "_.*" "" package "${file}")
    set(tree "${CPACK_TEMPORARY_DIRECTORY}/${file}.tree")
    file(REMOVE_RECURSE "${tree}")
    run(dpkg-deb --raw-extract "${package_file}" "${tree}")
    file(REMOVE "${package_file}")
    add_fields("${tree}/DEBIAN/control" "${package}")
    if(package MATCHES "-dbgsym$")
        add_documents("${tree}/usr/share" "${package}")
    endif()
    add_sums("${tree}")
    if(EXISTS "${tree}/DEBIAN/shlibs")
        file(REMOVE "${tree}/DEBIAN/postinst" "${tree}/DEBIAN/postrm")
        file(WRITE "${tree}/DEBIAN/triggers" "activate-noawait ldconfig\n")
        add_symbols("${tree}" "${package}")
    endif()
    # The lowest levels take a quarter of the time for a tenth more size.
    run(dpkg-deb --root-owner-group -Zxz -z2 --build "${tree}" "${package_file}")
    file(REMOVE_RECURSE "${tree}" "${tree}.symbols")
endfunction()

foreach(package_file IN LISTS CPACK_PACKAGE_FILES)
    finish("${package_file}")
endforeach()
