# Checks the shared library: it exports the services that the header declares and nothing else, and needs libc alone.
# Run with -DLIBRARY= -DHEADER= -DNM= -DREADELF=

file(STRINGS ${HEADER} declarations REGEX "^ *HOSTSVC_API ")
list(TRANSFORM declarations REPLACE "^ *HOSTSVC_API [a-z]+[* ] *([A-Za-z_]+)\\(.*" "\\1" OUTPUT_VARIABLE declared)
list(LENGTH declared count)
if(NOT count EQUAL 31)
    message(FATAL_ERROR "31 services expected in ${HEADER}, ${count} found: ${declared}")
endif()

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" exported "${symbols}")
list(TRANSFORM exported REPLACE " .*" "")

list(SORT declared)
list(SORT exported)
if(NOT "${declared}" STREQUAL "${exported}")
    message(FATAL_ERROR "declared: ${declared}\nexported: ${exported}")
endif()

execute_process(COMMAND ${READELF} -d ${LIBRARY} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*" needed "${dynamic}")
list(FILTER needed EXCLUDE REGEX "\\[ld-linux-aarch64\\.so\\.1\\]") # libc's loader, which keeps the stack guard there
if(NOT needed MATCHES "^\\(NEEDED\\)[^;]*\\[libc\\.so\\.6\\]$")
    message(FATAL_ERROR "libc alone expected: ${needed}")
endif()
