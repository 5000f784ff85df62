# The CMake package decoder-stats: decoder-stats::stats is the report library, decoder-stats::hostsvc the services that it takes
# from the host process, decoder-stats::hostsvc-static the archive of them.
include("${CMAKE_CURRENT_LIST_DIR}/decoder-stats-targets.cmake")
