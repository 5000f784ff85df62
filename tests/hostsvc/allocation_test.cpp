// No service allocates memory. An executable of its own, because it stands in for the C library's allocator.
#include <atomic>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "calls.h"

namespace
{
std::atomic<unsigned long> g_nAllocations = 0;
}

// The allocator of glibc behind the names that are replaced here. operator new ends in malloc.
extern "C" void* __libc_malloc(size_t nSize);
extern "C" void* __libc_calloc(size_t nCount, size_t nSize);
extern "C" void* __libc_realloc(void* pMemory, size_t nSize);
extern "C" void* __libc_memalign(size_t nAlignment, size_t nSize);

extern "C" void* malloc(size_t nSize)
{
    ++g_nAllocations;
    return __libc_malloc(nSize);
}

extern "C" void* calloc(size_t nCount, size_t nSize)
{
    ++g_nAllocations;
    return __libc_calloc(nCount, nSize);
}

extern "C" void* realloc(void* pMemory, size_t nSize)
{
    ++g_nAllocations;
    return __libc_realloc(pMemory, nSize);
}

extern "C" void* aligned_alloc(size_t nAlignment, size_t nSize)
{
    ++g_nAllocations;
    return __libc_memalign(nAlignment, nSize);
}

TEST(Allocation, IsCounted)
{
    const unsigned long nBefore = g_nAllocations;
    void* volatile pMemory = std::malloc(1);
    pMemory = std::realloc(pMemory, 2);
    std::free(pMemory);
    pMemory = std::calloc(1, 1);
    std::free(pMemory);
    int* volatile pNumber = new int(1);
    delete pNumber;
    EXPECT_EQ(g_nAllocations - nBefore, 4U);
}

TEST(Allocation, NoServiceAllocates)
{
    const auto expectNone = [](const char* szService, const char* szText, auto service, auto... values)
    {
        // A text that fits into its buffer, and one that is cut.
        for (const size_t nSize : {size_t{1024}, size_t{4}})
        {
            char szBuffer[1024];
            const unsigned long nBefore = g_nAllocations;
            service(values..., szBuffer, nSize);
            const unsigned long nAfter = g_nAllocations;
            EXPECT_EQ(nAfter, nBefore) << szService << ", text " << szText << ", size " << nSize;
        }
    };
    VisitCalls(expectNone);
}
