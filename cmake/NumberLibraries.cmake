# Defines the imported targets gmp::gmp and mpfr::mpfr, since GMP and MPFR come without CMake
# packages.

function(find_number_library name header)
    find_path(${name}_INCLUDE_DIR ${header} REQUIRED)
    find_library(${name}_LIBRARY ${name} REQUIRED)
    if(NOT TARGET ${name}::${name})
        add_library(${name}::${name} UNKNOWN IMPORTED)
        set_target_properties(${name}::${name} PROPERTIES
            IMPORTED_LOCATION "${${name}_LIBRARY}"
            INTERFACE_INCLUDE_DIRECTORIES "${${name}_INCLUDE_DIR}")
    endif()
endfunction()

find_number_library(gmp gmp.h)
find_number_library(mpfr mpfr.h)
