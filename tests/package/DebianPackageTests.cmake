# The Debian packages: made, checked, installed in a bare root, used and removed again. They consist
# of the built files, so nothing is compiled again. One build of those with line tables is enough.
if(NOT CONNECTOR_DEBUG_SYMBOLS OR NOT TARGET connector-config OR NOT BUILD_SHARED_LIBS)
    return()
endif()

set(debian_dir "${CMAKE_CURRENT_BINARY_DIR}/debian")

# connector_add_debian_test(NAME STEP PROPERTY...): a step of debian_packages.py
function(connector_add_debian_test name step)
    add_test(NAME package.${name}
        COMMAND Python3::Interpreter -B "${CMAKE_CURRENT_SOURCE_DIR}/debian_packages.py" ${step}
            --build "${PROJECT_BINARY_DIR}" --work "${debian_dir}")
    set_tests_properties(package.${name} PROPERTIES TIMEOUT 600 SKIP_RETURN_CODE 77 ${ARGN})
endfunction()

connector_add_debian_test(DebianPackagesContainWhatTheyShould make FIXTURES_SETUP debian_packages)
connector_add_debian_test(LintianFindsNothingUnexplained lint FIXTURES_REQUIRED debian_packages)
connector_add_debian_test(DebianPackagesInstallInABareRoot install
    FIXTURES_REQUIRED debian_packages FIXTURES_SETUP debian_root)
connector_add_debian_test(DebianPackagesLeaveNothingBehind remove
    FIXTURES_REQUIRED debian_packages FIXTURES_CLEANUP debian_root)

list(APPEND consumer_definitions
    "-DDEBIAN_PREFIX=${debian_dir}/root/usr" "-DDEBIAN_LIBDIR=lib/${CMAKE_LIBRARY_ARCHITECTURE}")
connector_add_package_test(AConsumerBuildsWithTheDebianPackages DebianConsumerTest.cmake
    FIXTURES_REQUIRED debian_root)

add_test(NAME package.TheUnitIsHardened
    COMMAND Python3::Interpreter -B "${CMAKE_CURRENT_SOURCE_DIR}/unit_exposure.py"
        "${PROJECT_SOURCE_DIR}/packaging/connector-config@.service")
set_tests_properties(package.TheUnitIsHardened PROPERTIES TIMEOUT 60 SKIP_RETURN_CODE 77)
