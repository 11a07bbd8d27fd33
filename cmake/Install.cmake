# Installs the libraries, their public headers, and the files for find_package and pkg-config.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/bradep_cxx_interface)

# Each library is a component with its own targets file, so that finding one component does not
# require the dependencies of the other.
install(TARGETS bradep_cxx_interface EXPORT serialisation FILE_SET HEADERS)
install(TARGETS bradep_inspect EXPORT inspect FILE_SET HEADERS)
foreach(component IN ITEMS serialisation inspect)
    install(EXPORT ${component}
        NAMESPACE bradep_cxx_interface::
        FILE ${component}-targets.cmake
        DESTINATION ${package_dir})
endforeach()
configure_package_config_file(cmake/config.cmake.in bradep_cxx_interface-config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(bradep_cxx_interface-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/bradep_cxx_interface-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/bradep_cxx_interface-config-version.cmake
    cmake/NumberLibraries.cmake
    DESTINATION ${package_dir})

# The pkg-config files find the prefix relative to their own directory, so that the installed tree
# can be moved.
file(RELATIVE_PATH prefix_from_pkgconfig
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(library IN ITEMS bradep_cxx_interface bradep_inspect)
    configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
