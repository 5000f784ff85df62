// Opening and closing: what is refused, what is left behind, and what a fork does.

#include "stats_publish.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "decoder.h"
#include "list.h"
#include "scratch_directory.h"
#include "support.h"

namespace
{

using published::Decoder;
using published::State;

State state_of(const ScratchDirectory& directory, const std::string& name)
{
    return Decoder(published::path_of(directory.path(), name)).status().state;
}

STATS_PUBLISH_ERROR refused(const char* name, const std::string& directory, const char* host = nullptr, unsigned heartbeat = 0)
{
    STATS_PUBLISH_ERROR error;
    STATS_PUBLISHER* publisher = STATS_PublishOpen(name, directory.c_str(), host, heartbeat, &error);
    EXPECT_EQ(publisher, nullptr);
    STATS_PublishClose(publisher);
    return error;
}

TEST(Opening, RefusesNamesThatAreNoFileNames)
{
    const ScratchDirectory directory;
    const std::string too_long(65, 'a');
    for (const char* name :
         {"", ".", "..", ".hidden", "a/b", "/a", "a b", "a\n", "\xc3\xa9", too_long.c_str(), static_cast<const char*>(nullptr)})
    {
        const STATS_PUBLISH_ERROR error = refused(name, directory.path());
        EXPECT_EQ(error.enCode, STATS_PUBLISH_BAD_ARGUMENT);
        EXPECT_EQ(error.nErrno, 0);
        EXPECT_NE(std::string(error.szText), "");
    }
    EXPECT_EQ(directory.names(), std::vector<std::string>());
}

TEST(Opening, TakesTheLongestName)
{
    const ScratchDirectory directory;
    const std::string name(64, 'a');
    const std::string host(64, 'h');
    const Publisher publisher(directory.path(), name, host.c_str());
    const published::Status status = Decoder(published::path_of(directory.path(), name)).status();
    EXPECT_EQ(status.decoder, name);
    EXPECT_EQ(status.host, host);
}

TEST(Opening, RefusesHostTextsAndIntervals)
{
    const ScratchDirectory directory;
    EXPECT_EQ(refused("a", directory.path(), std::string(65, 'h').c_str()).enCode, STATS_PUBLISH_BAD_ARGUMENT);
    EXPECT_EQ(refused("a", directory.path(), "two\nlines").enCode, STATS_PUBLISH_BAD_ARGUMENT);
    EXPECT_EQ(refused("a", directory.path(), nullptr, 3'600'001).enCode, STATS_PUBLISH_BAD_ARGUMENT);
    EXPECT_EQ(directory.names(), std::vector<std::string>());
}

TEST(Opening, NeedsTheDirectory)
{
    const ScratchDirectory directory;
    const std::string missing = directory / "missing";
    const STATS_PUBLISH_ERROR error = refused("a", missing);
    EXPECT_EQ(error.enCode, STATS_PUBLISH_NO_DIRECTORY);
    EXPECT_EQ(error.nErrno, ENOENT);
    EXPECT_EQ(std::string(error.szText), missing + ": No such file or directory");

    const std::string file = directory.write("file", "");
    EXPECT_EQ(refused("a", file).enCode, STATS_PUBLISH_NO_DIRECTORY);
}

TEST(Opening, SaysNothingWithoutAnErrorToFill)
{
    const ScratchDirectory directory;
    EXPECT_EQ(STATS_PublishOpen("a", (directory / "missing").c_str(), nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(STATS_PublishOpen("..", directory.path().c_str(), nullptr, 0, nullptr), nullptr);
}

TEST(Opening, LeavesOneFileForItsGroup)
{
    const ScratchDirectory directory;
    for (const mode_t mask : {0000, 0777})
    {
        const mode_t old = umask(mask);
        const Publisher publisher(directory.path(), "a");
        umask(old);
        EXPECT_EQ(directory.names(), std::vector<std::string>({"a.decstats"}));
        struct stat file = {};
        ASSERT_EQ(stat((directory / "a.decstats").c_str(), &file), 0);
        EXPECT_EQ(file.st_mode & 07777U, 0640U);
        EXPECT_GE(static_cast<std::uint64_t>(file.st_blocks) * 512, static_cast<std::uint64_t>(file.st_size)) << "not reserved";
    }
    EXPECT_EQ(directory.names(), std::vector<std::string>());
}

TEST(Opening, RefusesANameThatIsPublished)
{
    const ScratchDirectory directory;
    const Publisher first(directory.path(), "a");
    Decoder decoder(directory / "a.decstats");
    EXPECT_EQ(refused("a", directory.path()).enCode, STATS_PUBLISH_ALREADY_PUBLISHED);
    EXPECT_EQ(in_process(
                  [&]
                  {
                      if (refused("a", directory.path()).enCode != STATS_PUBLISH_ALREADY_PUBLISHED) _exit(1);
                  }),
              0);
    EXPECT_EQ(directory.names(), std::vector<std::string>({"a.decstats"}));
    EXPECT_EQ(decoder.status().state, State::starting) << "the first one goes on";
    const Publisher other(directory.path(), "b");
    EXPECT_EQ(directory.names(), std::vector<std::string>({"a.decstats", "b.decstats"}));
}

TEST(Opening, ReplacesWhatADeadProcessLeft)
{
    const ScratchDirectory directory;
    const records::Records records = sample_records("trouble");
    EXPECT_EQ(in_process(
                  [&]
                  {
                      STATS_PUBLISHER* publisher = STATS_PublishOpen("a", directory.path().c_str(), nullptr, 0, nullptr);
                      publish_all(publisher, records);
                      kill(getpid(), SIGKILL);
                  }),
              128 + SIGKILL);
    Decoder old(directory / "a.decstats");
    EXPECT_EQ(old.status().state, State::stale);

    const Publisher publisher(directory.path(), "a");
    Decoder decoder(directory / "a.decstats");
    EXPECT_EQ(decoder.status().state, State::starting);
    EXPECT_NE(decoder.status().instance.id, old.status().instance.id);
    EXPECT_GE(decoder.status().instance.started_at, old.status().instance.started_at);
    EXPECT_EQ(old.status().state, State::closed);
    EXPECT_EQ(directory.names(), std::vector<std::string>({"a.decstats"}));
}

TEST(Opening, ReplacesWhatAnOpeningLeft)
{
    const ScratchDirectory directory;
    directory.write(".a.decstats", "cut off");
    const Publisher publisher(directory.path(), "a");
    EXPECT_EQ(directory.names(), std::vector<std::string>({"a.decstats"}));
    EXPECT_EQ(state_of(directory, "a"), State::starting);
}

TEST(Opening, DoesNotWriteThroughLinks)
{
    const ScratchDirectory directory;
    const std::string victim = directory.write("victim", "precious");
    ASSERT_EQ(symlink(victim.c_str(), (directory / ".a.decstats").c_str()), 0);
    EXPECT_EQ(refused("a", directory.path()).nErrno, ELOOP);
    ASSERT_EQ(unlink((directory / ".a.decstats").c_str()), 0);
    ASSERT_EQ(link(victim.c_str(), (directory / ".a.decstats").c_str()), 0);
    ASSERT_EQ(symlink(victim.c_str(), (directory / "a.decstats").c_str()), 0);
    const Publisher publisher(directory.path(), "a");
    EXPECT_EQ(content_of(victim), "precious");
    EXPECT_EQ(state_of(directory, "a"), State::starting);
}

TEST(Opening, IsRefusedWhereFilesMayNotGrow)
{
    const ScratchDirectory directory;
    EXPECT_EQ(in_process(
                  [&]
                  {
                      const rlimit limit = {4096, 4096};
                      setrlimit(RLIMIT_FSIZE, &limit);
                      const STATS_PUBLISH_ERROR error = refused("a", directory.path());
                      if (error.enCode != STATS_PUBLISH_SYSTEM || error.nErrno != EFBIG || !directory.names().empty()) _exit(1);
                  }),
              0);
}

TEST(Opening, IsRefusedWithoutPermission)
{
    const ScratchDirectory directory;
    ASSERT_EQ(chmod(directory.path().c_str(), 0555), 0);
    EXPECT_EQ(in_process(
                  [&]
                  {
                      if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
                      const STATS_PUBLISH_ERROR error = refused("a", directory.path());
                      if (error.enCode != STATS_PUBLISH_NO_PERMISSION || error.nErrno != EACCES) _exit(1);
                      if (std::strstr(error.szText, (directory / ".a.decstats: Permission denied").c_str()) == nullptr) _exit(3);
                  }),
              0);
    ASSERT_EQ(chmod(directory.path().c_str(), 0755), 0);
}

TEST(Opening, ManyAtOnceGiveOnePublisher)
{
    const ScratchDirectory directory;
    for (int round = 0; round < 10; ++round)
    {
        std::vector<pid_t> processes;
        for (int i = 0; i < 4; ++i)
            processes.push_back(start(
                [&]
                {
                    for (int attempt = 0; attempt < 20; ++attempt)
                    {
                        STATS_PUBLISHER* publisher = STATS_PublishOpen("a", directory.path().c_str(), nullptr, 0, nullptr);
                        if (publisher == nullptr) continue;
                        // While it is open, the file that stands there is its own: nobody else has replaced it.
                        struct stat before = {};
                        struct stat after = {};
                        if (stat((directory / "a.decstats").c_str(), &before) != 0) _exit(1);
                        sched_yield();
                        if (stat((directory / "a.decstats").c_str(), &after) != 0 || before.st_ino != after.st_ino) _exit(2);
                        if (attempt % 2 == 0) _exit(0); // leaves it stale
                        STATS_PublishClose(publisher);
                    }
                }));
        for (const pid_t process : processes) EXPECT_EQ(wait_for(process), 0);
        unlink((directory / "a.decstats").c_str());
    }
    EXPECT_EQ(directory.names(), std::vector<std::string>());
}

TEST(Closing, RemovesTheFileAndNoOther)
{
    const ScratchDirectory directory;
    {
        const Publisher publisher(directory.path(), "a");
        ASSERT_EQ(unlink((directory / "a.decstats").c_str()), 0);
        directory.write("a.decstats", "another's");
    }
    EXPECT_EQ(content_of(directory / "a.decstats"), "another's");
}

TEST(Closing, FindsADirectoryThatHasMoved)
{
    const ScratchDirectory directory;
    ASSERT_EQ(mkdir((directory / "old").c_str(), 0755), 0);
    {
        const Publisher publisher(directory / "old", "a");
        ASSERT_EQ(rename((directory / "old").c_str(), (directory / "new").c_str()), 0);
    }
    EXPECT_EQ(rmdir((directory / "new").c_str()), 0) << "not empty";
}

TEST(NullPublisher, IsIgnoredEverywhere)
{
    publish_all(nullptr, sample_records("idle"));
    STATS_PublishHeartbeat(nullptr);
    STATS_PUBLISH_ERROR error;
    const char* field = "tdemux.state";
    EXPECT_EQ(STATS_PublishNotMeasured(nullptr, &field, 1, &error), TRUE);
    EXPECT_EQ(error.enCode, STATS_PUBLISH_OK);
    STATS_PublishClose(nullptr);
}

TEST(Fork, TheChildDoesNotPublish)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    EXPECT_EQ(in_process(
                  [&]
                  {
                      publish_all(publisher.get(), sample_records("trouble"));
                      STATS_PublishHeartbeat(publisher.get());
                      STATS_PublishClose(publisher.get());
                      STATS_PublishClose(publisher.get());
                  }),
              0);
    EXPECT_EQ(state_of(directory, "a"), State::starting) << "the file stays, and nothing has been published";
    publish_all(publisher.get(), sample_records("trouble"));
    EXPECT_EQ(state_of(directory, "a"), State::live) << "the parent goes on";
}

TEST(Fork, AChildWithoutTheHandlersOfForkDoesNotPublishEither)
{
    if (std::string_view(EMULATOR) != "") GTEST_SKIP() << "an emulator does not clear a page in the child";
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    const records::Records records = sample_records("trouble");
    const auto child = static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0));
    if (child == 0)
    {
        publish_all(publisher.get(), records);
        STATS_PublishClose(publisher.get());
        _exit(0);
    }
    ASSERT_GT(child, 0);
    EXPECT_EQ(wait_for(child), 0);
    EXPECT_EQ(state_of(directory, "a"), State::starting);
}

TEST(Fork, AChildDoesNotKeepItsParentAlive)
{
    const ScratchDirectory directory;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t host = start(
        [&]
        {
            STATS_PUBLISHER* publisher = STATS_PublishOpen("a", directory.path().c_str(), nullptr, 0, nullptr);
            start(
                [&]
                {
                    close(ends[1]);
                    char byte = 0;
                    static_cast<void>(!read(ends[0], &byte, 1)); // lives until the test closes its end
                });
            STATS_PublishHeartbeat(publisher);
            kill(getpid(), SIGKILL);
        });
    EXPECT_EQ(wait_for(host), 128 + SIGKILL);
    // The child lets go of the lock as soon as it runs, which on a busy machine may be after its parent's end.
    for (int i = 0; i < 500 && state_of(directory, "a") != State::stale; ++i) usleep(10'000);
    EXPECT_EQ(state_of(directory, "a"), State::stale);
    close(ends[1]);
    close(ends[0]);
}

TEST(Fork, TheChildMayPublishADecoderOfItsOwn)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    EXPECT_EQ(in_process(
                  [&]
                  {
                      const Publisher own(directory.path(), "b");
                      publish_all(own.get(), sample_records("idle"));
                      if (state_of(directory, "b") != State::live || state_of(directory, "a") != State::starting) _exit(1);
                  }),
              0);
}

TEST(Library, StaysLoaded)
{
    void* library = dlopen(STATSPUBLISH_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    dlclose(library);
    dlclose(library); // the count of this program's own use
    EXPECT_NE(dlopen(STATSPUBLISH_FILE, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

} // namespace
