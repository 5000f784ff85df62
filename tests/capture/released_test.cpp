// Files of every released format stay readable: released/ has one of each, and what they hold is told here.

#include <gtest/gtest.h>

#include "captured.h"
#include "expectations.h"

namespace
{

/** Version 1: the decoder usage of a decoder over two minutes, with a restart, written by the first program that had capture files. */
TEST(Released, Version1)
{
    const Held held = held_in(std::string(RELEASED_DIRECTORY) + "/version-1.dcap");
    expect_sound(held);
    EXPECT_EQ(held.ends, 1u);
    ASSERT_EQ(held.snapshots.size(), 5u);
    ASSERT_EQ(held.restarts.size(), 1u);
    EXPECT_EQ(held.restarts[0].moment, 1'800'000'061'000'000'000);
    const std::int64_t moments[] = {0, 1, 2, 61, 62};
    const unsigned long starts[] = {3, 3, 4, 1, 1};
    const unsigned long queries[] = {1024, 1025, 1026, 0, 60};
    for (std::size_t i = 0; i < 5; ++i)
    {
        const records::Snapshot& snapshot = held.snapshots[i];
        EXPECT_EQ(snapshot.taken_at, (1'800'000'000 + moments[i]) * second);
        EXPECT_EQ(snapshot.decoder, "studio-1");
        EXPECT_EQ(snapshot.host, i < 3 ? "session manager 7.1" : "session manager 7.2");
        ASSERT_TRUE(snapshot.instance);
        EXPECT_EQ(snapshot.instance->id[0], i < 3 ? 0x11 : 0x22);
        EXPECT_EQ(snapshot.present.to_ulong(), 1UL << records::find_component("usage")->index);
        const unsigned long found_starts = snapshot.records.usage.nNumStarts;
        const unsigned long found_queries = snapshot.records.usage.nNumGetStats;
        EXPECT_EQ(found_starts, starts[i]);
        EXPECT_EQ(found_queries, queries[i]);
        EXPECT_TRUE(snapshot.not_measured[dictionary::find("usage.clear_requests")->field->index]);
        EXPECT_EQ(snapshot.not_measured.count(), 1u);
    }
}

} // namespace
