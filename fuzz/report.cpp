// One report on any record. The input: a byte for the level, then the record's bytes; those that are missing are 0.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "all_reports.h"
#include "require.h"

static const records::Component& component = *records::find_component(COMPONENT);
static void* const function = report_function(component);

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    require(std::freopen("/dev/null", "w", stdout) != nullptr, "output can be thrown away");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const auto level = static_cast<STATS_LEVEL>(static_cast<signed char>(data[0]));

    // On the heap and no longer than a record, so that the sanitizer sees every read past its end.
    std::vector<uint8_t> record(component.record_size);
    std::copy_n(data + 1, std::min(size - 1, component.record_size), record.begin());
    const std::vector<uint8_t> before = record;

    require(component.print(function, record.data(), level) == TRUE, "the report returns TRUE");
    require(record == before, "the record is as it was");
    require(!std::ferror(stdout), "the output has no error");
    return 0;
}
