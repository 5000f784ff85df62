// No report uses the heap: every allocation of the process is counted while each prints every sample and random records.
// One is libc's own: its strerror allocates the text of a number that it does not know.

#include <gtest/gtest.h>
#include <netdb.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <random>
#include <string_view>
#include <vector>

#include "all_reports.h"
#include "capture.h"

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
}

static std::atomic<unsigned long> allocations;

// These take the place of the C library's for the whole process, its own calls included.
extern "C" void* malloc(size_t size)
{
    allocations++;
    return __libc_malloc(size);
}

extern "C" void* calloc(size_t count, size_t size)
{
    allocations++;
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* block, size_t size)
{
    allocations++;
    return __libc_realloc(block, size);
}

extern "C" void* memalign(size_t alignment, size_t size)
{
    allocations++;
    return __libc_memalign(alignment, size);
}

extern "C" void* aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}

extern "C" int posix_memalign(void** block, size_t alignment, size_t size)
{
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

static unsigned long AllocationsOf(const records::Component& component, const void* record, STATS_LEVEL level)
{
    void* const function = report_function(component);
    unsigned long count = 0;
    Capture(
        [&]
        {
            const unsigned long before = allocations;
            component.print(function, record, level);
            count = allocations - before;
        });
    return count;
}

TEST(Heap, TheCounterCounts)
{
    const unsigned long before = allocations;
    const std::vector<int>* volatile block = new std::vector<int>(1000);
    delete block;
    EXPECT_EQ(allocations - before, 2u);
    Capture([] { fprintf(stdout, "\n"); }); // stdio allocates the buffer of stdout once; from here on it stands
}

TEST(Heap, NoReportOfASampleAllocates)
{
    for (const auto& [scenario, summary] : sources::scenarios())
    {
        const records::Snapshot snapshot = sources::sample(scenario, frozen_moment);
        for (const records::Component& component : records::components())
            for (STATS_LEVEL level : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
                EXPECT_EQ(AllocationsOf(component, snapshot.record(component).data(), level), 0u) << scenario << " " << component.name;
    }
}

TEST(Heap, NoReportOfRandomBytesAllocates)
{
    std::mt19937_64 random(16);
    alignas(std::max_align_t) std::byte record[sizeof(SMGR_TDEMUX_STATS)];
    static_assert(sizeof record >= sizeof(SMGR_DECODER_AUDIO_STATS));
    for (const records::Component& component : records::components())
        for (int round = 0; round < 500; round++)
        {
            for (size_t i = 0; i < component.record_size; i++) record[i] = static_cast<std::byte>(random());
            if (component.name == "tdemux")
            {
                const int known = round % 2 ? EHOSTUNREACH : EAI_NONAME;
                memcpy(record + offsetof(SMGR_TDEMUX_STATS, tCounters.iLastError), &known, sizeof known);
            }
            EXPECT_EQ(AllocationsOf(component, record, STATS_LEVEL_DEBUG), 0u) << component.name;
        }
}
