// Commands that look at capture files.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "captured.h"
#include "expectations.h"
#include "tool_run.h"

namespace
{

/** Two instances with a restart and a gap between them: 8 snapshots from 08:00:00 to 08:00:04, and from 08:03:00 to 08:03:02. */
std::string eventful(const ScratchDirectory& directory)
{
    const std::string path = directory / "a.dcap";
    auto snapshots = Living("live-srt-1080i").snapshots(183);
    capture::Writer writer(path);
    for (std::size_t i = 0; i < 5; ++i) writer.append(snapshots[i]);
    writer.mark_gap(capture::GapCause::no_source, "stale\x1b[2J");
    for (std::size_t i = 180; i < 183; ++i)
    {
        snapshots[i].instance->id = {0xAB};
        snapshots[i].instance->started_at = noon + 179 * second;
        writer.append(snapshots[i]);
    }
    writer.finish();
    return path;
}

/** A frame in a file [bytes]. */
struct Frame
{
    std::uint64_t offset;
    std::uint64_t size;
};

/** Changes a byte of the first snapshot that is told from the one before. */
Frame damage_first_change(const ScratchDirectory& directory, const std::string& name)
{
    capture::FrameReader frames(directory / name);
    frames.start();
    auto part = frames.next();
    while (part.type != capture::FrameType::change) part = frames.next();
    std::string bytes = content_of(directory / name);
    bytes[part.offset + 12] ^= 1;
    directory.write(name, bytes);
    return {part.offset, part.size};
}

TEST(History, TellsSpanRestartsAndGaps)
{
    const ScratchDirectory directory;
    const std::string path = eventful(directory);
    const std::size_t size = content_of(path).size();
    const Finish finish = run({"history", path});
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.out, "File         : " + path +
                              "\n"
                              "Size         : " +
                              std::to_string(size) + " bytes, " + std::to_string((size + 4) / 8) +
                              " a snapshot\n"
                              "Decoder      : studio-1\n"
                              "From         : 2027-01-15T08:00:00Z\n"
                              "To           : 2027-01-15T08:03:02Z (3m 02s)\n"
                              "Snapshots    : 8\n"
                              "Instances    : 2\n"
                              "Restarts     : 1\n"
                              "Gaps         : 1\n"
                              "Damage       : 0\n"
                              "\n"
                              "2027-01-15T08:00:00Z  instance 01020300000000000000000000000000, started 2027-01-15T07:59:00Z, host 1.0\n"
                              "2027-01-15T08:00:04Z  gap of 2m 56s: no source, stale\\x1b[2J\n"
                              "2027-01-15T08:03:00Z  restart of the host\n"
                              "2027-01-15T08:03:00Z  instance ab000000000000000000000000000000, started 2027-01-15T08:02:59Z, host 1.0\n"
                              "2027-01-15T08:03:02Z  end of the capture\n");
}

TEST(History, TellsDamage)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a";
    capture_all(path, Living("live-srt-1080i").snapshots(125));
    std::string bytes = content_of(path);
    bytes[bytes.size() / 10 * 9] ^= 1; // in a snapshot: the layouts take most of the first half
    directory.write("a", bytes);
    const Finish finish = run({"history", path});
    EXPECT_EQ(finish.status, 0);
    EXPECT_NE(finish.out.find("Damage       : 1\n"), std::string::npos) << finish.out;
    EXPECT_NE(finish.out.find("Z  damage within "), std::string::npos) << finish.out;
    EXPECT_NE(finish.out.find(" cannot be read at offset "), std::string::npos) << finish.out;
}

TEST(Check, FindsAWholeFileWhole)
{
    const ScratchDirectory directory;
    const Finish finish = run({"check", eventful(directory)});
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(finish.out, "8 snapshots can be read\n");
    EXPECT_EQ(finish.err, "");
}

TEST(Check, NamesDamageAndRepairLeavesItOut)
{
    const ScratchDirectory directory;
    const std::string path = eventful(directory);
    const std::vector<records::Snapshot> all = held_in(path).snapshots;
    const Frame part = damage_first_change(directory, "a.dcap"); // the second snapshot, from which three others are told
    const std::string damaged = content_of(path);

    const Finish check = run({"check", path});
    EXPECT_EQ(check.status, 2);
    EXPECT_EQ(check.out, std::to_string(part.size) + " bytes cannot be read at offset " + std::to_string(part.offset) +
                             ", which costs at least 4 snapshots, after 2027-01-15T08:00:00Z, before 2027-01-15T08:03:00Z\n"
                             "4 snapshots can be read\n");
    EXPECT_EQ(check.err, "decstats: " + path + ": damaged in 1 place; 'decstats repair' writes a file of what can be read\n");

    const Finish repair = run({"repair", path, directory / "b.dcap"});
    EXPECT_EQ(repair.status, 0);
    EXPECT_EQ(repair.out, "4 snapshots kept, " + std::to_string(part.size) + " bytes left out\n");
    EXPECT_EQ(content_of(path), damaged);
    expect_same(held_in(directory / "b.dcap").snapshots, {all[0], all[5], all[6], all[7]});
    EXPECT_EQ(run({"check", directory / "b.dcap"}).status, 0);
    EXPECT_NE(run({"history", directory / "b.dcap"}).out.find("gap of 3m 00s: damaged\n"), std::string::npos);

    const Finish again = run({"repair", path, directory / "b.dcap"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.err, "decstats: " + directory / "b.dcap" + ": File exists\n");
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"a.dcap", "b.dcap"}));
}

TEST(Check, TellsAFileThatIsBeingWrittenFromOneThatWasCutOff)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(3);
    const std::string path = directory / "a";
    {
        capture::Writer writer(path);
        append_all(writer, snapshots);
        const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        ASSERT_EQ(write(file, "abc", 3), 3);
        close(file);
        const Finish growing = run({"check", path});
        EXPECT_EQ(growing.status, 0);
        EXPECT_EQ(growing.out, "3 bytes at the end are no whole frame, and the file is being written\n3 snapshots can be read\n");
    }
    const Finish cut_off = run({"check", path});
    EXPECT_EQ(cut_off.status, 2);
    EXPECT_EQ(cut_off.out, "3 bytes at the end are no whole frame: the capture was cut off\n3 snapshots can be read\n");
}

TEST(Check, NamesWhatIsNoCaptureFile)
{
    const ScratchDirectory directory;
    const std::string path = directory.write("text", "some text that is longer than a header of a file");
    for (const char* command : {"check", "history"})
    {
        const Finish finish = run({command, path});
        EXPECT_EQ(finish.status, 2);
        EXPECT_EQ(finish.out, "");
        EXPECT_EQ(finish.err, "decstats: " + path + ": not a capture file\n");
    }
    EXPECT_EQ(run({"repair", path, directory / "b"}).status, 2);
    EXPECT_EQ(directory.names(), std::vector<std::string>{"text"});
}

/** The value of a field that show prints. */
std::string shown(const std::vector<std::string>& arguments)
{
    std::vector<std::string> all = {"show"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.insert(all.end(), {"--field", "tdemux.received_packets"});
    const Finish finish = run(all);
    EXPECT_EQ(finish.status, 0) << finish.err;
    return finish.out;
}

std::string received(const records::Snapshot& snapshot)
{
    return "tdemux.received_packets " + std::to_string(snapshot.records.tdemux.tCounters.nNumReceivedPackets) + " packets\n";
}

TEST(CaptureSource, AtPicksTheMoment)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(100);
    const std::string path = directory / "a";
    capture_all(path, snapshots);
    EXPECT_EQ(shown({path}), received(snapshots.back()));
    EXPECT_EQ(shown({path, "--at", "2027-01-15T08:00:10Z"}), received(snapshots[10]));
    EXPECT_EQ(shown({path, "--at", "2027-01-15T08:00:10.999Z"}), received(snapshots[10]));
    EXPECT_EQ(shown({path, "--at", "2027-01-15T09:01:30+01:00"}), received(snapshots[90]));
    EXPECT_EQ(shown({path, "--at", "2030-01-01T00:00:00Z"}), received(snapshots.back()));

    const auto failure = [&](const std::string& at)
    {
        const Finish finish = run({"show", path, "--at", at});
        EXPECT_EQ(finish.status, 2);
        EXPECT_EQ(finish.out, "");
        return finish.err;
    };
    EXPECT_EQ(failure("2027-01-15T07:59:59Z"), "decstats: " + path + ": holds no snapshot of that moment or before\n");
    EXPECT_EQ(failure("mtime"), "decstats: " + path + ": a capture file has moments of its own, so none for --at mtime\n");
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0, end = 0; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
        lines.push_back(text.substr(start, end - start));
    return lines;
}

TEST(CaptureSource, ARangeIsALineOfJsonForEachSnapshot)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(100);
    const std::string path = directory / "a";
    capture_all(path, snapshots);
    const auto shown_range = [&](std::vector<std::string> more)
    {
        std::vector<std::string> all = {"show", path, "--format", "ndjson"};
        all.insert(all.end(), more.begin(), more.end());
        const Finish finish = run(all);
        EXPECT_EQ(finish.status, 0);
        EXPECT_EQ(finish.err, "");
        return lines_of(finish.out);
    };
    const auto packets = [&](std::size_t i)
    { return "\"received_packets\":" + std::to_string(snapshots[i].records.tdemux.tCounters.nNumReceivedPackets); };

    const auto lines =
        shown_range({"--from", "2027-01-15T08:00:50Z", "--to", "2027-01-15T08:01:10Z", "--field", "tdemux.received_packets"});
    ASSERT_EQ(lines.size(), 21u);
    for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_NE(lines[i].find("{" + packets(50 + i) + "}"), std::string::npos) << lines[i];

    // Each is the line of its moment, whatever else is asked for.
    const std::string last = "2027-01-15T08:01:39Z";
    EXPECT_EQ(shown_range({"--from", last}), shown_range({"--at", last}));
    EXPECT_EQ(shown_range({"--from", last, "--raw", "--component", "audio"}), shown_range({"--at", last, "--raw", "--component", "audio"}));
    EXPECT_EQ(shown_range({"--to", "2027-01-15T08:00:00.5Z"}), shown_range({"--at", "2027-01-15T08:00:00Z"}));
    EXPECT_EQ(shown_range({"--from", "0"}).size(), 100u);
}

TEST(CaptureSource, WhatIsWrongWithARangeIsSaid)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a";
    capture_all(path, Living("live-srt-1080i").snapshots(3));
    const auto failure = [&](const std::vector<std::string>& arguments)
    {
        const Finish finish = run(arguments);
        EXPECT_EQ(finish.status, 2);
        EXPECT_EQ(finish.out, "");
        return finish.err;
    };
    const std::string from = "2027-01-15T08:00:01Z";
    const std::string formats = "decstats: a range is many snapshots: --from and --to are for --format ndjson\n";
    for (const char* format : {"text", "json", "openmetrics", "prometheus"})
        EXPECT_EQ(failure({"show", path, "--from", from, "--format", format}), formats);
    EXPECT_EQ(failure({"show", path, "--to", from}), formats);
    EXPECT_EQ(failure({"show", path, "--from", from, "--at", from, "--format", "ndjson"}),
              "decstats: --at is one moment, --from and --to are a range: not both\n");
    EXPECT_EQ(failure({"show", path, "--from", from, "--format", "ndjson", "--output", directory / "b"}),
              "decstats: --output replaces a file whole, so there is no range in it: not with --from and --to\n");
    EXPECT_EQ(failure({"show", "sample:idle", "--from", from, "--format", "ndjson"}),
              "decstats: --from and --to are for a SOURCE that is a capture file\n");
    EXPECT_EQ(failure({"show", path, "--from", "2027-01-15T08:00:03Z", "--format", "ndjson"}),
              "decstats: " + path + ": holds no snapshot of that range\n");
    for (const char* command : {"show", "watch", "capture", "diagnose"})
    {
        const Finish finish = run({command, path, "--to", "mtime"});
        EXPECT_NE(finish.status, 0);
        EXPECT_NE(finish.err.find("--to: 'mtime' is no moment; a moment is as 2022-06-06T16:06:55Z, or seconds since the epoch\n"),
                  std::string::npos)
            << finish.err;
    }
}

TEST(CaptureSource, WhatIsLostOfARangeIsToldAndTheRestShown)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(70);
    const std::string path = directory / "a";
    capture_all(path, snapshots);
    const Frame part = damage_first_change(directory, "a");
    const Finish finish = run({"show", path, "--from", "0", "--format", "ndjson", "--field", "tdemux.received_packets"});
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(lines_of(finish.out).size(), 11u); // the first, and from the whole one behind a minute on
    EXPECT_EQ(finish.err, "decstats: " + path + ": " + std::to_string(part.size) + " bytes cannot be read at offset " +
                              std::to_string(part.offset) + ", which costs at least 59 snapshots\n");
}

TEST(CaptureSource, AReportCountsItsAgesToTheMomentOfTheSnapshot)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("trouble").snapshots(3);
    const std::string path = directory / "a";
    capture_all(path, snapshots);
    const auto records = snapshots[1].record(*records::find_component("usage"));
    const std::string file = directory.write("usage.rec", {reinterpret_cast<const char*>(records.data()), records.size()});
    const Finish now = run({"show", path, "--at", "2027-01-15T08:00:01Z", "--component", "usage", "--level", "debug"});
    const Finish then = run({"show", file, "--at", "2027-01-15T08:00:01Z", "--level", "debug"});
    EXPECT_EQ(now.status, 0) << now.err;
    EXPECT_NE(now.out, "");
    EXPECT_EQ(now.out, then.out);
}

TEST(CaptureSource, WhatIsLostBehindTheSnapshotShownIsTold)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(3);
    const std::string path = directory / "a";
    capture_all(path, snapshots);
    const Frame part = damage_first_change(directory, "a");
    const Finish finish = run({"show", path, "--field", "tdemux.received_packets"});
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(finish.out, received(snapshots[0]));
    EXPECT_EQ(finish.err, "decstats: " + path + ": what follows the snapshot shown is damaged: " + std::to_string(part.size) +
                              " bytes cannot be read at offset " + std::to_string(part.offset) + ", which costs at least 2 snapshots\n");
}

} // namespace
