# Compiler and linker options that make a memory error in a host process harder to exploit. For what is delivered: a debug
# build stays as it was written, and the sanitizers, which have checks of their own, do not go together with these.
if(STATS_SANITIZE OR NOT CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
    return()
endif()

# A distribution's compiler may have set another level already.
add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    add_compile_options(-mbranch-protection=standard)
endif()

# The linker's tables are filled and made read-only at load, so calls through them need no stubs. The report library sets both
# back (src/CMakeLists.txt): its host chooses when services bind. "text" makes a relocation in code an error of the build.
add_compile_options(-fno-plt)
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:-z,text)

# Without this check, CMAKE_POSITION_INDEPENDENT_CODE compiles executables for it and leaves the linking to the compiler.
include(CheckPIESupported)
check_pie_supported()
