// decstats capture: what it writes, and how it goes on and ends.

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "captured.h"
#include "expectations.h"
#include "frames.h"
#include "support.h"
#include "tool_run.h"

namespace
{

using capture::GapCause;

/** decstats capture in the background. */
class Capturing
{
public:
    explicit Capturing(const std::vector<std::string>& arguments)
    {
        process_ = start(
            [&]
            {
                std::istringstream emulator(DECSTATS_EMULATOR); // a build for another processor runs through it
                std::vector<std::string> words(std::istream_iterator<std::string>(emulator), {});
                words.insert(words.end(), {DECSTATS_FILE, "capture"});
                words.insert(words.end(), arguments.begin(), arguments.end());
                std::vector<char*> raw;
                for (std::string& word : words) raw.push_back(word.data());
                raw.push_back(nullptr);
                execvp(raw[0], raw.data());
                _exit(98);
            });
    }
    ~Capturing()
    {
        if (process_ > 0) end(SIGKILL);
    }
    Capturing(const Capturing&) = delete;
    Capturing& operator=(const Capturing&) = delete;

    /** @return exit status; 128 and the signal's number if a signal ended it */
    int end(int signal)
    {
        kill(process_, signal);
        return wait_for(std::exchange(process_, -1));
    }

private:
    pid_t process_ = -1;
};

/** Waits until a file holds what is asked for. */
template <typename Wanted> bool wait_until(const std::string& path, const Wanted& is_there)
{
    for (int i = 0; i < 400; ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
        if (access(path.c_str(), F_OK) == 0 && capture::Reader::is_capture(path) && is_there(held_in(path))) return true;
    }
    return false;
}

TEST(Capture, ALiveDecoderUntilASignal)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
    {
        const ScratchDirectory directory;
        const Publisher publisher(directory.path(), "studio-1", "host 2.0");
        publish_all(publisher.get(), sample_records("trouble"));
        Capturing capturing({"--directory", directory.path(), "studio-1", directory / "a", "--every", "20ms"});
        ASSERT_TRUE(wait_until(directory / "a", [](const Held& held) { return held.snapshots.size() >= 5; }));
        EXPECT_EQ(capturing.end(signal), 0);
        const Held held = held_in(directory / "a");
        expect_sound(held);
        EXPECT_EQ(held.ends, 1u);
        const records::Records expected = sample_records("trouble");
        for (const records::Snapshot& snapshot : held.snapshots)
        {
            EXPECT_EQ(snapshot.decoder, "studio-1");
            EXPECT_EQ(snapshot.host, "host 2.0");
            EXPECT_TRUE(snapshot.instance);
            records::Snapshot one = snapshot;
            one.records = expected;
            EXPECT_EQ(differences(snapshot, one), std::vector<std::string>());
        }
    }
}

TEST(Capture, KilledAndStartedAgain)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "studio-1");
    publish_all(publisher.get(), sample_records("trouble"));
    const std::vector<std::string> arguments = {"--directory", directory.path(), directory / "a", "--every", "20ms"}; // the only one
    Capturing first(arguments);
    ASSERT_TRUE(wait_until(directory / "a", [](const Held& held) { return held.snapshots.size() >= 3; }));
    EXPECT_EQ(first.end(SIGKILL), 128 + SIGKILL);
    const std::size_t before = held_in(directory / "a").snapshots.size();
    Capturing second(arguments);
    ASSERT_TRUE(wait_until(directory / "a", [&](const Held& held) { return held.snapshots.size() >= before + 3; }));
    EXPECT_EQ(second.end(SIGTERM), 0);
    const Held held = held_in(directory / "a");
    expect_sound(held);
    EXPECT_TRUE(held.restarts.empty());
    ASSERT_GE(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, GapCause::cut_off);
}

TEST(Capture, AHostThatStartsAnew)
{
    const ScratchDirectory directory;
    auto publisher = std::make_unique<Publisher>(directory.path(), "studio-1");
    publish_all(publisher->get(), sample_records("trouble"));
    Capturing capturing({"--directory", directory.path(), "studio-1", directory / "a", "--every", "20ms"});
    ASSERT_TRUE(wait_until(directory / "a", [](const Held& held) { return held.snapshots.size() >= 3; }));
    publisher.reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    publisher = std::make_unique<Publisher>(directory.path(), "studio-1");
    publish_all(publisher->get(), sample_records("idle"));
    EXPECT_TRUE(wait_until(directory / "a", [](const Held& held) { return !held.restarts.empty() && held.snapshots.size() >= 6; }));
    EXPECT_EQ(capturing.end(SIGTERM), 0);
    const Held held = held_in(directory / "a");
    expect_sound(held);
    ASSERT_EQ(held.restarts.size(), 1u);
    EXPECT_EQ(held.restarts[0].before, held.snapshots.front().instance);
    EXPECT_EQ(held.restarts[0].after, held.snapshots.back().instance);
    ASSERT_GE(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, GapCause::no_source);
    EXPECT_EQ(held.gaps[0].text, "closed");
}

TEST(Capture, TwoAtOnceAreRefused)
{
    const ScratchDirectory directory;
    Capturing capturing({"sample:idle", directory / "a", "--every", "20ms"});
    ASSERT_TRUE(wait_until(directory / "a", [](const Held& held) { return held.snapshots.size() >= 2; }));
    const Finish other = run({"capture", "sample:idle", directory / "a", "--for", "0s"});
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.err, "decstats: " + directory / "a" + ": another process captures into it\n");
    EXPECT_EQ(capturing.end(SIGTERM), 0);
    expect_sound(held_in(directory / "a"));
}

TEST(Capture, ForATime)
{
    const ScratchDirectory directory;
    const Finish finish = run({"capture", "sample:idle", directory / "a", "--every", "100ms", "--for", "450ms"});
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(finish.out + finish.err, "");
    const Held held = held_in(directory / "a");
    expect_sound(held);
    EXPECT_EQ(held.ends, 1u);
    EXPECT_GE(held.snapshots.size(), 2u); // 5 where nothing holds it up
    EXPECT_LE(held.snapshots.size(), 5u);
    EXPECT_EQ(run({"capture", "sample:idle", directory / "b", "--for", "0s"}).status, 0);
    EXPECT_EQ(held_in(directory / "b").snapshots.size(), 1u);
}

TEST(Capture, ProgressIsShownOnATerminal)
{
    const ScratchDirectory directory;
    const Finish finish = run(Start{.arguments = {"capture", "sample:idle", directory / "a", "--for", "0s"}, .error_terminal = true});
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(finish.err.find("\r1 snapshot, "), 0u) << finish.err;
    EXPECT_EQ(finish.err.back(), '\n');
}

TEST(Capture, ARangeOfAnotherCapture)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(200);
    capture_all(directory / "a", snapshots);
    const Finish finish =
        run({"capture", directory / "a", directory / "b", "--from", "2027-01-15T08:00:50Z", "--to", "2027-01-15T08:01:10Z"});
    EXPECT_EQ(finish.status, 0) << finish.err;
    const Held held = held_in(directory / "b");
    expect_same(held.snapshots, {snapshots.begin() + 50, snapshots.begin() + 71});
    expect_sound(held);
    EXPECT_EQ(run({"capture", directory / "a", directory / "c"}).status, 0);
    expect_same(held_in(directory / "c").snapshots, snapshots);
}

TEST(Capture, ANewFileEachDay)
{
    const ScratchDirectory directory;
    std::vector<records::Snapshot> snapshots;
    records::Snapshot snapshot = only("usage", Living("idle").snapshot());
    for (int hour = 0; hour < 50; hour += 5) // from Friday 08:00 to Sunday 05:00
    {
        snapshot.taken_at = noon + hour * 3600 * second;
        snapshots.push_back(snapshot);
    }
    capture_all(directory / "all", snapshots);
    EXPECT_EQ(run({"capture", directory / "all", directory / "a.dcap", "--rotate", "day"}).status, 0);
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"a-20270115T080000Z.dcap", "a-20270116T040000Z.dcap", "a.dcap", "all"}));
    expect_same(held_in(directory / "a-20270115T080000Z.dcap").snapshots, {snapshots.begin(), snapshots.begin() + 4});
    expect_same(held_in(directory / "a-20270116T040000Z.dcap").snapshots, {snapshots.begin() + 4, snapshots.begin() + 8});
    expect_same(held_in(directory / "a.dcap").snapshots, {snapshots.begin() + 8, snapshots.end()});
    for (const std::string& name : directory.names()) EXPECT_EQ(run({"check", directory / name}).status, 0);
}

TEST(Capture, ANewFileAboveASize)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(400);
    capture_all(directory / "all", snapshots);
    EXPECT_EQ(run({"capture", directory / "all", directory / "a", "--rotate", "100K"}).status, 0);
    std::vector<records::Snapshot> found;
    auto names = directory.names();
    EXPECT_EQ(names.front(), "a");
    EXPECT_GE(names.size(), 3u);
    std::rotate(names.begin(), names.begin() + 1, names.end()); // the present file is the last one
    for (const std::string& name : names)
    {
        if (name == "all") continue;
        const Held held = held_in(directory / name);
        expect_sound(held);
        found.insert(found.end(), held.snapshots.begin(), held.snapshots.end());
        EXPECT_LT(content_of(directory / name).size(), 110u * 1024);
    }
    expect_same(found, snapshots);
}

TEST(Capture, WhatIsWrongIsSaid)
{
    const ScratchDirectory directory;
    const auto failure = [](const std::vector<std::string>& arguments, int status)
    {
        std::vector<std::string> all = {"capture"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Finish finish = run(all);
        EXPECT_EQ(finish.status, status);
        EXPECT_EQ(finish.out, "");
        return finish.err;
    };
    const std::string text = directory.write("text", "some text that is longer than a header of a file");
    EXPECT_EQ(failure({}, 2), "decstats: FILE is required; see 'decstats capture --help'\n");
    EXPECT_EQ(failure({"sample:idle", text}, 2), "decstats: " + text + ": not a capture file\n");
    EXPECT_EQ(content_of(text), "some text that is longer than a header of a file");
    EXPECT_EQ(failure({"sample:idle", directory / "no/a"}, 1), "decstats: " + directory / "no/a" + ": No such file or directory\n");
    EXPECT_EQ(failure({"sample:nowhere", directory / "a"}, 2), "decstats: sample 'nowhere' is not known\n");
    EXPECT_EQ(failure({"sample:idle", directory / "a", "--from", "0"}, 2),
              "decstats: --from and --to are for a SOURCE that is a capture file\n");
    capture_all(directory / "b", Living("idle").snapshots(1));
    EXPECT_EQ(failure({directory / "b", directory / "a", "--for", "1s"}, 2),
              "decstats: --every and --for are for sources that live; a capture file has moments of its own\n");
    EXPECT_EQ(failure({"sample:idle", directory / "b", "--for", "0s"}, 2),
              "decstats: " + directory / "b" + ": holds the snapshots of decoder 'studio-1', and these are of ''\n");
    EXPECT_EQ(failure({"sample:idle", directory / "a", "--rotate", "12X"}, 2),
              "decstats: --rotate: '12X' is neither 'day' nor a size as 64M\n");
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"b", "text"}));
}

} // namespace
