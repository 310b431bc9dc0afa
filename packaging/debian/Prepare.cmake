# Runs in cpack before the packages are made: brings the installed files of each component into the
# form that Debian wants.
cmake_minimum_required(VERSION 3.22)

# The time of the last change, so that the same tree makes the same packages
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP time "%a, %d %b %Y %H:%M:%S +0000" UTC)
else()
    file(TIMESTAMP "${CPACK_CONNECTOR_SOURCE_DIR}/CHANGELOG.md" time
        "%a, %d %b %Y %H:%M:%S +0000" UTC)
endif()

# move(FROM TO): if there is such a directory or file; links may lead to files of another package
function(move from to)
    if(EXISTS "${from}" OR IS_SYMLINK "${from}")
        cmake_path(GET to PARENT_PATH parent)
        file(MAKE_DIRECTORY "${parent}")
        file(RENAME "${from}" "${to}")
    endif()
endfunction()

# compress(FILE): replaces it by FILE.gz, without a name and a time in it
function(compress file)
    execute_process(COMMAND gzip -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# add_documents(USR PACKAGE): changelogs, copyright and what lintian must not report
function(add_documents usr package)
    set(directory "${usr}/share/doc/${package}")
    set(debian "${CPACK_CONNECTOR_SOURCE_DIR}/packaging/debian")
    configure_file("${debian}/changelog.in" "${directory}/changelog.Debian" @ONLY)
    configure_file("${CPACK_CONNECTOR_SOURCE_DIR}/CHANGELOG.md" "${directory}/changelog" COPYONLY)
    configure_file("${debian}/copyright" "${directory}/copyright" COPYONLY)
    compress("${directory}/changelog.Debian")
    compress("${directory}/changelog")
    configure_file("${debian}/lintian-overrides" "${usr}/share/lintian/overrides/${package}" COPYONLY)
endfunction()

# move_libraries(USR): to the directory of the architecture, which is one level deeper. Files of
# CMake and pkg-config find the others relative to themselves.
function(move_libraries usr)
    set(deep "lib/${CPACK_CONNECTOR_ARCHITECTURE}")
    set(flat "${CPACK_CONNECTOR_LIBDIR}")
    if(flat STREQUAL deep)
        return()
    endif()
    file(GLOB entries "${usr}/${flat}/*connector*" "${usr}/${flat}/cmake" "${usr}/${flat}/pkgconfig")
    foreach(entry IN LISTS entries)
        cmake_path(GET entry FILENAME name)
        move("${entry}" "${usr}/${deep}/${name}")
    endforeach()
    file(GLOB_RECURSE texts "${usr}/${deep}/*.cmake" "${usr}/${deep}/*.pc")
    foreach(file IN LISTS texts)
        file(READ "${file}" text)
        string(REPLACE "_PREFIX}/${flat}/" "_PREFIX}/${deep}/" text "${text}")
        string(REPLACE "{prefix}/${flat}\n" "{prefix}/${deep}\n" text "${text}")
        string(REPLACE "{pcfiledir}/" "{pcfiledir}/../" text "${text}")
        string(REPLACE "(_IMPORT_PREFIX \"\${CMAKE_CURRENT_LIST_FILE}\" PATH)"
            "(_IMPORT_PREFIX \"\${CMAKE_CURRENT_LIST_DIR}\" PATH)" text "${text}")
        string(REPLACE "_DIR}/../../../\"" "_DIR}/../../../../\"" text "${text}")
        file(WRITE "${file}" "${text}")
    endforeach()
endfunction()

# clean_binaries(USR): without run paths, which packages in the directories of Debian do not need
function(clean_binaries usr)
    file(GLOB libraries "${usr}/lib/${CPACK_CONNECTOR_ARCHITECTURE}/*.so.*.*.*")
    file(GLOB programs "${usr}/bin/*" "${usr}/libexec/*/*")
    foreach(binary IN LISTS libraries programs)
        file(RPATH_REMOVE FILE "${binary}")
    endforeach()
    foreach(library IN LISTS libraries)
        file(CHMOD "${library}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    endforeach()
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" id)
    set(usr "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr")
    move_libraries("${usr}")
    clean_binaries("${usr}")
    move("${usr}/share/zsh/site-functions" "${usr}/share/zsh/vendor-completions")
    add_documents("${usr}" "${CPACK_DEBIAN_${id}_PACKAGE_NAME}")
    file(GLOB pages "${usr}/share/man/man1/*.1")
    foreach(page IN LISTS pages)
        compress("${page}")
    endforeach()
endforeach()
