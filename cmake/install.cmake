# What "cmake --install" installs: the libraries with their headers, examples, pkg-config files and CMake package, decstats
# and decstats-serve with their manual pages and completions; the target "delivered" builds it. No installed file names a folder of the machine, so the whole may be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(header_folder ${CMAKE_INSTALL_INCLUDEDIR}/decoder-stats)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/decoder-stats)
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

add_custom_target(delivered DEPENDS stats hostsvc hostsvc_archive statspublish decstats)

# ---- The libraries ----

# The SOVERSION counts the interfaces: it goes up when a record, an enumeration or a function changes so that host processes
# have to be built anew.
set_target_properties(stats hostsvc statspublish PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1)
set_target_properties(hostsvc_archive PROPERTIES EXPORT_NAME hostsvc-static)

# The headers' folders are for this build: what is installed has a folder of its own.
foreach(library stats hostsvc hostsvc_archive statspublish)
    foreach(property INTERFACE_INCLUDE_DIRECTORIES INTERFACE_LINK_LIBRARIES)
        get_target_property(value ${library} ${property})
        set_target_properties(${library} PROPERTIES ${property} "$<BUILD_INTERFACE:${value}>")
    endforeach()
endforeach()

install(TARGETS stats hostsvc hostsvc_archive statspublish EXPORT decoder-stats
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${header_folder})
install(DIRECTORY include/ DESTINATION ${header_folder} FILES_MATCHING PATTERN *.h)
install(FILES hostsvc/hostsvc.h DESTINATION ${header_folder})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

install(EXPORT decoder-stats NAMESPACE decoder-stats:: FILE decoder-stats-targets.cmake DESTINATION ${package_folder})
write_basic_package_version_file(decoder-stats-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/decoder-stats-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/decoder-stats-config-version.cmake
        DESTINATION ${package_folder})

file(RELATIVE_PATH prefix_of_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(library stats hostsvc statspublish)
    configure_file(cmake/lib${library}.pc.in lib${library}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lib${library}.pc DESTINATION ${pkgconfig_folder})
endforeach()

# ---- The tool ----

# The programs find the library from their own folder. The build has the folders of the installation, so that one run path holds in
# both, and nothing has to be changed in what was linked.
set_target_properties(stats PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
if(STATS_TOOLS)
    file(RELATIVE_PATH library_folder ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set(programs decstats)
    if(STATS_SERVER)
        list(APPEND programs decstats-serve)
        add_dependencies(delivered decstats-serve)
    endif()
    set_target_properties(${programs} PROPERTIES
        INSTALL_RPATH "$ORIGIN/${library_folder}"
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_BINDIR})
    install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

    install(FILES packaging/completions/decstats.bash
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME decstats)
    install(FILES packaging/completions/_decstats DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES packaging/completions/decstats.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

    # For Prometheus and Grafana, to be copied or named where those are configured.
    install(DIRECTORY packaging/prometheus DESTINATION ${CMAKE_INSTALL_DATADIR}/decstats)
endif()

# ---- The manual pages ----

file(GLOB manual_pages CONFIGURE_DEPENDS man/*.[135])
if(NOT STATS_SOFTDEC)
    list(FILTER manual_pages EXCLUDE REGEX "/softdec\\.1$")
endif()
if(NOT STATS_SERVER)
    list(FILTER manual_pages EXCLUDE REGEX "/decstats-serve\\.1$")
endif()
foreach(page ${manual_pages})
    string(REGEX REPLACE ".*\\." "man" section ${page})
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/${section})
endforeach()

# Each exported function leads to the page of its library.
foreach(library stats statspublish)
    get_target_property(folder ${library} SOURCE_DIR)
    file(READ ${folder}/lib${library}.map map)
    string(REGEX MATCHALL "(STATS_|_Get)[A-Za-z]+" functions "${map}")
    foreach(function ${functions})
        file(CONFIGURE OUTPUT ${function}.3 CONTENT ".so man3/lib${library}.3\n")
        install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${function}.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
    endforeach()
endforeach()
