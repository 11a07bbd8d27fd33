# Looks into the library's object files for static objects with a priority. The table of strings
# has the first one that a program may use, the shared result string the next, and nothing else has
# any: priorities below 101 are the compiler's own.

foreach(object IN LISTS OBJECTS)
    if(NOT object MATCHES "\\.o$")
        continue()  # a precompiled header
    endif()
    execute_process(COMMAND ${READELF} -SW ${object}
        OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL " \\.init_array\\.[0-9]+" found "${sections}")
    list(REMOVE_DUPLICATES found)
    foreach(section IN LISTS found)
        string(REGEX MATCH "[1-9][0-9]*$" priority "${section}")
        if(priority GREATER 100)
            cmake_path(GET object FILENAME name)
            list(APPEND prioritised "${name} ${priority}")
        endif()
    endforeach()
endforeach()

set(expected "Strings.cpp.o 101;bindings.cpp.o 102")
list(SORT prioritised)
if(NOT prioritised STREQUAL expected)
    message(FATAL_ERROR "static objects with a priority: ${prioritised}; expected: ${expected}")
endif()
