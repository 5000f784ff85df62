// Records of random bytes, char arrays without their NUL among them. Each ends right before a page that cannot be read, so
// that reading past a record ends the test program in every build, not only under AddressSanitizer.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <random>

#include "all_reports.h"
#include "capture.h"

namespace
{

// A record of the size asked for, right before a page without access.
class GuardedRecord
{
public:
    explicit GuardedRecord(size_t size) : m_size(size)
    {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        m_mapped = (size + page - 1) / page * page + page;
        m_base = static_cast<std::byte*>(mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (m_base == MAP_FAILED || mprotect(m_base + m_mapped - page, page, PROT_NONE) != 0) throw std::bad_alloc();
        m_record = m_base + m_mapped - page - size;
    }
    GuardedRecord(const GuardedRecord&) = delete;
    GuardedRecord& operator=(const GuardedRecord&) = delete;
    ~GuardedRecord() { munmap(m_base, m_mapped); }
    std::byte* data() { return m_record; }
    size_t size() const { return m_size; }

private:
    size_t m_size;
    size_t m_mapped;
    std::byte* m_base;
    std::byte* m_record;
};

} // namespace

TEST(RandomRecords, EveryReportPrintsWholeLinesOfAnyBytes)
{
    std::mt19937_64 random(20220606);
    for (const records::Component& component : records::components())
    {
        GuardedRecord record(component.record_size);
        for (int round = 0; round < 200; round++)
        {
            // Every other round most bytes are 0, 1 or all ones, so that states, flags and signs meet their named values.
            for (size_t i = 0; i < record.size(); i++)
            {
                const unsigned long draw = random();
                static constexpr unsigned char few[] = {0, 0, 0, 1, 2, 255};
                record.data()[i] = static_cast<std::byte>(round % 2 ? draw : few[draw % sizeof few]);
            }
            for (int level : {0, 1, 2, -1})
            {
                const std::string text =
                    Capture([&] { EXPECT_EQ(print_report(component, record.data(), static_cast<STATS_LEVEL>(level)), TRUE); });
                EXPECT_TRUE(text.empty() || text.back() == '\n') << component.name;
            }
        }
    }
}

TEST(RandomRecords, CharArraysWithoutTheirNulEndAtTheirSize)
{
    for (const records::Component& component : records::components())
    {
        GuardedRecord record(component.record_size);
        memset(record.data(), 'W', record.size());
        for (int level : {0, 1}) Capture([&] { EXPECT_EQ(print_report(component, record.data(), static_cast<STATS_LEVEL>(level)), TRUE); });
    }
}
