// The publishing host of the examples, as its readers see it.

#include <csignal>
#include <gtest/gtest.h>
#include <spawn.h>
#include <thread>

#include "decoder.h"
#include "list.h"
#include "scratch_directory.h"
#include "support.h"

namespace
{

/** Becomes the host. A build for another processor runs through its emulator. */
void become_host(const std::string& directory)
{
    execl("/bin/sh", "sh", "-c", "exec " EMULATOR " \"$0\" \"$1\"", HOST_FILE, directory.c_str(), nullptr);
}

TEST(Host, IsSeenWhileItRuns)
{
    const ScratchDirectory directory;
    const pid_t host = start([&] { become_host(directory.path()); });
    std::optional<published::Look> look;
    for (int attempt = 0; attempt < 200 && !look; ++attempt)
    {
        const published::Listing listing = published::list(directory.path());
        if (!listing.decoders.empty() && listing.decoders[0].status.state == published::State::live)
            look = published::Decoder(listing.decoders[0].path).look();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_TRUE(look);
    EXPECT_EQ(look->snapshot.decoder, "decoder-1");
    EXPECT_EQ(look->status.host, "host 1.0");
    EXPECT_TRUE(look->snapshot.has(*records::find_component("usage")));
    const unsigned long starts = look->snapshot.records.usage.nNumStarts; // packed: it has no address to refer to
    EXPECT_GE(starts, 1U);
    EXPECT_EQ(wait_for(host), 0);
    EXPECT_TRUE(directory.names().empty()) << "it takes its file away";
}

TEST(Host, GoesOnWithoutADirectory)
{
    EXPECT_EQ(in_process([] { become_host("/nonexistent"); }), 1);
}

} // namespace
