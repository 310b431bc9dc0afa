# Prints the public headers of the project, one a line: what is installed, except the headers that
# are only there because others include them.
#
#   cmake -P public_headers.cmake
cmake_minimum_required(VERSION 3.22)

cmake_path(SET root NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../..")
include("${root}/cmake/PrivateHeaders.cmake")

file(GLOB_RECURSE headers RELATIVE "${root}"
    "${root}/connector/*.hpp" "${root}/messaging/*.hpp" "${root}/platform/*.hpp")
list(FILTER headers EXCLUDE REGEX "/detail/")
set(hidden ${connector_private_rooms} ${connector_uninstalled_directories})
foreach(directory IN LISTS hidden)
    list(FILTER headers EXCLUDE REGEX "^${directory}/")
endforeach()
list(APPEND headers ${connector_public_headers_in_private_rooms})
list(SORT headers)
list(JOIN headers "\n" lines)
execute_process(COMMAND "${CMAKE_COMMAND}" -E echo "${lines}")
