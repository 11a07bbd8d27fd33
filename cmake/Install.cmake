# `cmake --install`: the libraries, their public headers, and what find_package and pkg-config need.

include(CMakePackageConfigHelpers)

set(public_headers_dir ${CMAKE_INSTALL_INCLUDEDIR}/bradep_cxx_interface)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/bradep_cxx_interface)

install(TARGETS bradep_cxx_interface bradep_inspect EXPORT bradep_cxx_interface
    INCLUDES DESTINATION ${public_headers_dir})
install(FILES
    core/Strings.hpp
    core/arms.hpp
    core/big_integer.hpp
    core/box.hpp
    core/declare.hpp
    core/export.hpp
    core/hash.hpp
    core/ieee754_float.hpp
    core/names.hpp
    DESTINATION ${public_headers_dir}/core)
install(DIRECTORY schema DESTINATION ${public_headers_dir} FILES_MATCHING PATTERN *.hpp)
install(FILES bindings/bindings.hpp bindings/roots.def
    DESTINATION ${public_headers_dir}/bindings)
install(FILES
    inspect/canonical.hpp
    inspect/dump.hpp
    inspect/encode.hpp
    inspect/finding.hpp
    inspect/position.hpp
    inspect/schema_json.hpp
    inspect/type.hpp
    inspect/verify.hpp
    inspect/verify_c.h
    DESTINATION ${public_headers_dir}/inspect)

install(EXPORT bradep_cxx_interface
    NAMESPACE bradep_cxx_interface::
    FILE targets.cmake
    DESTINATION ${package_dir})
configure_package_config_file(cmake/config.cmake.in bradep_cxx_interface-config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(bradep_cxx_interface-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/bradep_cxx_interface-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/bradep_cxx_interface-config-version.cmake
    cmake/NumberLibraries.cmake
    DESTINATION ${package_dir})

# The files say where they are, not where they were made for.
file(RELATIVE_PATH prefix_from_pkgconfig
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(library IN ITEMS bradep_cxx_interface bradep_inspect)
    configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
