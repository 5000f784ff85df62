# The CMake package decoder-stats: decoder-stats::stats is the report library, decoder-stats::hostsvc the services that it takes
# from the host process, decoder-stats::hostsvc-static the archive of them; decoder-stats::statspublish publishes records.
include("${CMAKE_CURRENT_LIST_DIR}/decoder-stats-targets.cmake")

# A host process need not call the services itself, so linkers that drop unused libraries would drop this one. It is named once
# more in a single word, because CMake may put words of a link line in another order.
set_property(TARGET decoder-stats::hostsvc APPEND PROPERTY INTERFACE_LINK_LIBRARIES
    "-Wl,--push-state,--no-as-needed,$<TARGET_FILE:decoder-stats::hostsvc>,--pop-state")
