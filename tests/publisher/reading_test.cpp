// What readers see: the records, the states, and what they say of files that are none.

#include "decoder.h"

#include <csignal>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>

#include "dictionary.h"
#include "list.h"
#include "published_file.h"
#include "scratch_directory.h"
#include "support.h"

namespace
{

using published::Decoder;
using published::Look;
using published::RecordState;
using published::State;
using published::Status;

std::int64_t now(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

std::string bytes_of(const records::Records& records, const records::Component& component)
{
    return {reinterpret_cast<const char*>(&records) + component.offset, component.record_size};
}

std::string bytes_of(const records::Snapshot& snapshot, const records::Component& component)
{
    const std::span<const std::byte> bytes = snapshot.record(component);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST(Reading, GivesEveryRecordOfEverySample)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "decoder-1", "host 1.0");
    Decoder decoder(directory / "decoder-1.decstats");
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
    {
        const records::Records sample = sample_records(samples_scenarios[i].szName);
        const std::int64_t before = now(CLOCK_REALTIME_COARSE);
        publish_all(publisher.get(), sample);
        const Look look = decoder.look();
        const std::int64_t after = now(CLOCK_REALTIME);

        EXPECT_EQ(look.status.state, State::live) << look.status.text;
        EXPECT_EQ(look.status.text, "");
        EXPECT_EQ(look.status.host, "host 1.0");
        EXPECT_EQ(look.snapshot.decoder, "decoder-1");
        EXPECT_EQ(look.snapshot.instance, look.status.instance);
        EXPECT_TRUE(look.snapshot.not_measured.none());
        EXPECT_TRUE(before <= look.snapshot.taken_at && look.snapshot.taken_at <= after);
        for (const records::Component& component : records::components())
        {
            ASSERT_TRUE(look.snapshot.has(component)) << component.name;
            EXPECT_EQ(bytes_of(look.snapshot, component), bytes_of(sample, component)) << component.name;
            EXPECT_EQ(look.snapshot.written_at[component.index], look.status.records[component.index].published_at);
            EXPECT_TRUE(before <= look.status.records[component.index].published_at &&
                        look.status.records[component.index].published_at <= after);
        }
    }
}

TEST(Reading, GivesWhatHasBeenPublished)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    Decoder decoder(directory / "a.decstats");
    const records::Records sample = sample_records("trouble");
    STATS_PublishForAudioDecoder(publisher.get(), &sample.audio);
    const Look look = decoder.look();
    EXPECT_EQ(look.status.state, State::live);
    for (const records::Component& component : records::components())
    {
        const bool published = component.name == "audio";
        EXPECT_EQ(look.snapshot.has(component), published) << component.name;
        EXPECT_EQ(look.status.records[component.index].state, published ? RecordState::whole : RecordState::never) << component.name;
    }
}

TEST(Reading, TellsWhatIsNotMeasured)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    Decoder decoder(directory / "a.decstats");
    STATS_PUBLISH_ERROR error;
    const auto place = [](const char* name) { return dictionary::find(name)->field->index; };

    const char* first[] = {"tdemux.state", "tdemux.sources[].bit_rate"};
    EXPECT_EQ(STATS_PublishNotMeasured(publisher.get(), first, 2, &error), TRUE) << error.szText;
    const char* unknown[] = {"usage.start_requests", "tdemux.nothing"};
    EXPECT_EQ(STATS_PublishNotMeasured(publisher.get(), unknown, 2, &error), FALSE);
    EXPECT_EQ(error.enCode, STATS_PUBLISH_UNKNOWN_FIELD);
    EXPECT_EQ(std::string(error.szText), "no field has the name \"tdemux.nothing\"");
    for (const char* name :
         {"", "tdemux", "tdemux.", "tdemux.stat", "tdemux.state2", "state", "tdemux.sources[0].bit_rate", "Tdemux.state"})
        EXPECT_EQ(STATS_PublishNotMeasured(publisher.get(), &name, 1, nullptr), FALSE) << name;

    std::bitset<1024> expected;
    expected.set(place(first[0])).set(place(first[1]));
    EXPECT_EQ(decoder.look().snapshot.not_measured, expected);

    // The first and the last field of all, as they add up.
    const std::string names[] = {std::string(dictionary::fields().front().full_name), std::string(dictionary::fields().back().full_name)};
    const char* second[] = {names[0].c_str(), names[1].c_str()};
    EXPECT_EQ(STATS_PublishNotMeasured(publisher.get(), second, 2, &error), TRUE) << error.szText;
    expected.set(0).set(dictionary::field_count - 1);
    EXPECT_EQ(decoder.look().snapshot.not_measured, expected);
}

TEST(Reading, KnowsEveryFieldByItsName)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    for (const dictionary::Field& field : dictionary::fields())
    {
        const std::string name(field.full_name);
        const char* one = name.c_str();
        ASSERT_EQ(STATS_PublishNotMeasured(publisher.get(), &one, 1, nullptr), TRUE) << name;
        const std::bitset<1024> said = Decoder(directory / "a.decstats").look().snapshot.not_measured;
        ASSERT_TRUE(said[field.index]) << name;
        ASSERT_EQ(said.count(), field.index + 1U) << name;
    }
}

TEST(States, FollowTheHost)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a.decstats";
    EXPECT_EQ(Decoder(path).status().state, State::missing);
    EXPECT_EQ(Decoder(path).status().text, path + ": No such file or directory");
    auto publisher = std::make_unique<Publisher>(directory.path(), "a");
    Decoder decoder(path);
    EXPECT_EQ(decoder.status().state, State::starting);
    EXPECT_EQ(decoder.status().text, path + ": still starting: nothing has been published yet");
    const records::Records sample = sample_records("idle");
    STATS_PublishForDecoderUsage(publisher->get(), &sample.usage);
    EXPECT_EQ(decoder.status().state, State::live);

    // The last heartbeat, made older than it is: 12.5 s, and just within five intervals.
    const std::size_t heartbeat = slot_offset(content_of(path), publisher::SectionType::heartbeat) + sizeof(publisher::Slot);
    overwrite(path, heartbeat, static_cast<std::uint64_t>(now(CLOCK_MONOTONIC) - 12'500'000'000));
    EXPECT_EQ(decoder.status().state, State::hung);
    EXPECT_EQ(decoder.status().text, path + ": hung: no heartbeat for 12.5 s, though its host promised one every 1.0 s");
    EXPECT_TRUE(decoder.look().snapshot.present.any()) << "its last records are shown";
    STATS_PublishForDecoderUsage(publisher->get(), &sample.usage);
    EXPECT_EQ(decoder.status().state, State::hung) << "publishing alone is no sign of life";
    overwrite(path, heartbeat, static_cast<std::uint64_t>(now(CLOCK_MONOTONIC) - 4'000'000'000));
    EXPECT_EQ(decoder.status().state, State::live);
    overwrite(path, heartbeat, 0);
    EXPECT_EQ(decoder.status().state, State::hung);
    STATS_PublishHeartbeat(publisher->get());
    EXPECT_EQ(decoder.status().state, State::live);

    publisher.reset();
    EXPECT_EQ(decoder.status().state, State::closed);
    EXPECT_TRUE(decoder.look().snapshot.present.any()) << "what was open is still there";
    EXPECT_EQ(Decoder(path).status().state, State::missing);
}

TEST(States, OfAHostThatHasNotComeUp)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    const std::string path = directory / "a.decstats";
    overwrite(path, slot_offset(content_of(path), publisher::SectionType::heartbeat) + sizeof(publisher::Slot), 0);
    EXPECT_EQ(Decoder(path).status().state, State::hung) << "hung tells more than starting";
}

TEST(States, OfAHeartbeatCutOffInTheMiddle)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    const std::string path = directory / "a.decstats";
    overwrite(path, slot_offset(content_of(path), publisher::SectionType::heartbeat), 3);
    EXPECT_EQ(Decoder(path).status().state, State::hung);
}

TEST(States, OfADeadHostAreThoseItHad)
{
    const ScratchDirectory directory;
    EXPECT_EQ(in_process(
                  [&]
                  {
                      STATS_PUBLISHER* publisher = STATS_PublishOpen("a", directory.path().c_str(), nullptr, 0, nullptr);
                      publish_all(publisher, sample_records("trouble"));
                      kill(getpid(), SIGKILL);
                  }),
              128 + SIGKILL);
    Decoder decoder(directory / "a.decstats");
    const Look look = decoder.look();
    EXPECT_EQ(look.status.state, State::stale);
    EXPECT_EQ(look.status.text, directory / "a.decstats" + ": stale: its host has ended without closing it");
    EXPECT_TRUE(look.snapshot.present.all());
    EXPECT_EQ(look.snapshot.taken_at, look.status.records[records::component_count - 1].published_at) << "the last one published";
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(decoder.look().snapshot.taken_at, look.snapshot.taken_at);
}

TEST(States, OfAReadersLockAreNotThoseOfALivingHost)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a.decstats";
    EXPECT_EQ(in_process([&] { STATS_PublishOpen("a", directory.path().c_str(), nullptr, 0, nullptr); }), 0);
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct flock lock = {};
    lock.l_type = F_RDLCK;
    ASSERT_EQ(fcntl(file, F_OFD_SETLK, &lock), 0);
    EXPECT_EQ(Decoder(path).status().state, State::stale);
    const Publisher publisher(directory.path(), "a"); // nor does it keep a host from the name
    close(file);
}

TEST(Records, BeingWrittenAreBusyOrCutOff)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a.decstats";
    const records::Records sample = sample_records("trouble");
    auto publisher = std::make_unique<Publisher>(directory.path(), "a");
    publish_all(publisher->get(), sample);
    const std::size_t slot = slot_offset(content_of(path), publisher::SectionType::record, 2);
    overwrite(path, slot, 3);

    const records::Component& vdecoder = *records::find_component("vdecoder");
    const Look busy = Decoder(path).look();
    EXPECT_EQ(busy.status.records[vdecoder.index].state, RecordState::busy);
    EXPECT_FALSE(busy.snapshot.has(vdecoder));
    EXPECT_EQ(bytes_of(busy.snapshot, vdecoder), std::string(vdecoder.record_size, '\0')) << "nothing of it is shown";
    EXPECT_EQ(busy.snapshot.present.count(), records::component_count - 1) << "the others are";

    const std::string bytes = content_of(path);
    publisher.reset();
    const Look cut_off = Decoder(directory.write("a.decstats", bytes)).look();
    EXPECT_EQ(cut_off.status.state, State::stale);
    EXPECT_EQ(cut_off.status.records[vdecoder.index].state, RecordState::cut_off);
    EXPECT_FALSE(cut_off.snapshot.has(vdecoder));
    EXPECT_EQ(cut_off.snapshot.present.count(), records::component_count - 1);
}

TEST(Permission, IsToldWithOwnerModeAndUser)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a.decstats";
    const Publisher publisher(directory.path(), "a");
    ASSERT_EQ(chmod(directory.path().c_str(), 0755), 0);
    const uid_t owner = geteuid();
    ASSERT_EQ(chmod(path.c_str(), owner == 0 ? 0640 : 0000), 0);
    const auto as_another = [&](const std::function<bool()>& holds)
    {
        return in_process(
            [&]
            {
                if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(2);
                if (!holds()) _exit(1);
            });
    };
    const std::string user = "this process is user " + std::to_string(owner == 0 ? 65534 : owner);
    const std::string expected = path + ": no permission: owner " + std::to_string(owner) + ", group " + std::to_string(getegid()) +
                                 ", mode " + (owner == 0 ? "0640" : "0000") + "; " + user;
    EXPECT_EQ(as_another(
                  [&]
                  {
                      const Status status = Decoder(path).status();
                      return status.state == State::no_permission && status.text == expected;
                  }),
              0)
        << expected;
    EXPECT_EQ(as_another(
                  [&]
                  {
                      const published::Listing listing = published::list(directory.path());
                      return !listing.problem && listing.decoders.size() == 1 && listing.decoders[0].status.state == State::no_permission;
                  }),
              0)
        << "it is in the list";

    ASSERT_EQ(chmod(directory.path().c_str(), 0000), 0);
    EXPECT_EQ(as_another(
                  [&]
                  {
                      const published::Listing listing = published::list(directory.path());
                      const Status status = Decoder(path).status();
                      return listing.problem && listing.problem->state == State::no_permission && status.state == State::no_permission &&
                             status.text == path + ": no permission: its directory cannot be searched; " + user;
                  }),
              0)
        << "the directory is told as well";
    ASSERT_EQ(chmod(directory.path().c_str(), 0700), 0);
}

TEST(List, HasEveryDecoderByName)
{
    const ScratchDirectory directory;
    const Publisher b(directory.path(), "b");
    const Publisher a(directory.path(), "a");
    EXPECT_EQ(in_process([&] { STATS_PublishOpen("dead", directory.path().c_str(), nullptr, 0, nullptr); }), 0);
    directory.write("junk.decstats", "junk");
    directory.write(".c.decstats", "being opened");
    directory.write("other.txt", "");
    directory.write("no name.decstats", "");
    directory.write(".decstats", "");
    publish_all(a.get(), sample_records("idle"));

    const published::Listing listing = published::list(directory.path());
    EXPECT_FALSE(listing.problem);
    ASSERT_EQ(listing.decoders.size(), 4U);
    const std::vector<std::pair<std::string, State>> expected = {
        {"a", State::live}, {"b", State::starting}, {"dead", State::stale}, {"junk", State::damaged}};
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(listing.decoders[i].name, expected[i].first);
        EXPECT_EQ(listing.decoders[i].path, directory / expected[i].first + ".decstats");
        EXPECT_EQ(listing.decoders[i].status.state, expected[i].second) << listing.decoders[i].name;
    }
}

TEST(List, SurvivesDecodersThatComeAndGo)
{
    const ScratchDirectory directory;
    const pid_t host = start(
        [&]
        {
            for (;;)
            {
                STATS_PUBLISHER* publisher = STATS_PublishOpen("a", directory.path().c_str(), nullptr, 0, nullptr);
                STATS_PublishClose(publisher);
            }
        });
    std::size_t seen = 0;
    for (int i = 0; i < 1'000'000 && seen < 30; ++i)
        for (const published::Listed& listed : published::list(directory.path()).decoders)
        {
            EXPECT_TRUE(listed.status.state == State::starting || listed.status.state == State::stale) << listed.status.text;
            ++seen;
        }
    kill(host, SIGKILL);
    EXPECT_EQ(wait_for(host), 128 + SIGKILL);
    EXPECT_GE(seen, 30U);
}

TEST(List, SaysWhyThereIsNone)
{
    const ScratchDirectory directory;
    const published::Listing listing = published::list(directory / "missing");
    ASSERT_TRUE(listing.problem);
    EXPECT_EQ(listing.problem->state, State::missing);
    EXPECT_EQ(listing.problem->text, directory / "missing" + ": No such file or directory");
}

/** Opens a file that holds those bytes, and looks. */
Status status_of(const ScratchDirectory& directory, const std::string& bytes)
{
    return Decoder(directory.write("hostile", bytes)).look().status;
}

std::string published_bytes()
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    publish_all(publisher.get(), sample_records("trouble"));
    return content_of(directory / "a.decstats");
}

template <typename T> std::string with(std::string bytes, std::size_t offset, T value)
{
    std::memcpy(bytes.data() + offset, &value, sizeof value);
    return bytes;
}

TEST(Hostile, FilesAreNamedForWhatTheyAre)
{
    const ScratchDirectory directory;
    const std::string good = published_bytes();
    const std::string path = directory / "hostile";
    const std::string damaged = path + ": damaged: ";
    using publisher::Header;
    EXPECT_EQ(status_of(directory, good).state, State::stale) << "as it is, it is good";

    const std::string none = damaged + "not the file of a published decoder";
    EXPECT_EQ(status_of(directory, "").text, none);
    EXPECT_EQ(status_of(directory, good.substr(0, 11)).text, none);
    EXPECT_EQ(status_of(directory, "x" + good).text, none);
    EXPECT_EQ(status_of(directory, good.substr(0, 12)).text, damaged + "shorter than its header");
    EXPECT_EQ(status_of(directory, good.substr(0, 4096)).text,
              damaged + "has 4096 bytes, but its header says " + std::to_string(good.size()));
    EXPECT_EQ(status_of(directory, good + "x").state, State::damaged);

    const Status newer = status_of(directory, with<std::uint32_t>(good, offsetof(Header, version), 2).substr(0, 12));
    EXPECT_EQ(newer.state, State::other_version);
    EXPECT_EQ(newer.text, path + ": format version 2, but this program reads version 1");

    const auto expect = [&](std::size_t offset, auto value, const std::string& text)
    { EXPECT_EQ(status_of(directory, with(good, offset, value)).text, damaged + text); };
    expect(offsetof(Header, header_size), std::uint32_t{200}, "its header has an impossible size");
    expect(offsetof(Header, header_size), ~std::uint32_t{0}, "its header has an impossible size");
    expect(offsetof(Header, heartbeat_interval), std::uint32_t{0}, "its heartbeats have no interval");
    expect(offsetof(Header, decoder), '/', "its decoder has no valid name");
    expect(offsetof(Header, section_count), ~std::uint32_t{0}, "an impossible table of sections");
    expect(offsetof(Header, section_size), std::uint32_t{16}, "an impossible table of sections");
    expect(offsetof(Header, section_count), std::uint32_t{0}, "no section with its heartbeats");
    expect(sizeof(Header) + offsetof(publisher::Section, offset), ~std::uint64_t{0}, "section 0 lies outside the file");
    expect(sizeof(Header) + offsetof(publisher::Section, size), ~std::uint64_t{0}, "section 0 lies outside the file");
    expect(sizeof(Header) + offsetof(publisher::Section, size), std::uint64_t{8}, "a layout is shorter than its own header");
    expect(sizeof(Header) + offsetof(publisher::Section, id), std::uint32_t{1}, "two layouts of one component");

    publisher::Section first = {};
    std::memcpy(&first, good.data() + sizeof(Header), sizeof first);
    const std::size_t row = first.offset + sizeof(publisher::Layout);
    expect(first.offset + offsetof(publisher::Layout, field_count), std::uint32_t{16384}, "a layout has more fields than it has room for");
    expect(first.offset + offsetof(publisher::Layout, row_size), std::uint32_t{0}, "a layout has rows of an impossible size");
    expect(first.offset + offsetof(publisher::Layout, record_size), std::uint32_t{0}, "a layout has a record of an impossible size");
    expect(first.offset + offsetof(publisher::Layout, record_size), std::uint32_t{4096}, "a section is shorter than what it holds");
    expect(row + offsetof(publisher::FieldRow, offset), std::uint32_t{3089}, "a field lies outside its record");
    expect(row + offsetof(publisher::FieldRow, count), std::uint32_t{0}, "a field lies outside its record");
    expect(row + offsetof(publisher::FieldRow, name_offset), ~std::uint32_t{0}, "a field's name lies outside its layout");
    expect(row + offsetof(publisher::FieldRow, member_length), std::uint16_t{65535}, "a field's name lies outside its layout");
}

TEST(Hostile, SectionsThatAreNotAligned)
{
    const ScratchDirectory directory;
    PublishedFile file(published_bytes());
    file.components.front().key += "\0x";
    std::string bytes = file.bytes();
    publisher::Header header = {};
    std::memcpy(&header, bytes.data(), sizeof header);
    for (std::uint32_t i = 0; i < header.section_count; ++i)
    {
        const std::size_t entry = sizeof header + i * sizeof(publisher::Section);
        publisher::Section section = {};
        std::memcpy(&section, bytes.data() + entry, sizeof section);
        if (section.type != static_cast<std::uint32_t>(publisher::SectionType::heartbeat)) continue;
        EXPECT_EQ(status_of(directory, with<std::uint64_t>(bytes, entry + 8, section.offset - 4)).text,
                  directory / "hostile" + ": damaged: a section is not aligned");
    }
}

TEST(Hostile, MomentsBeyondAnyTime)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    publish_all(publisher.get(), sample_records("idle"));
    const std::string path = directory / "a.decstats";
    const std::string good = content_of(path);
    const std::size_t heartbeat = slot_offset(good, publisher::SectionType::heartbeat);
    const std::size_t usage = slot_offset(good, publisher::SectionType::record, 7);
    for (const std::uint64_t moment : {std::uint64_t{1} << 63, ~std::uint64_t{0}, (std::uint64_t{1} << 63) - 1})
    {
        overwrite(path, offsetof(publisher::Header, started_at), moment);
        overwrite(path, heartbeat + sizeof(publisher::Slot), moment);
        overwrite(path, usage + offsetof(publisher::Slot, moment), moment);
        const Look look = Decoder(path).look();
        EXPECT_TRUE(look.status.state == State::live || look.status.state == State::hung);
        EXPECT_GE(look.status.heartbeat_age, 0);
        EXPECT_GE(look.status.instance.started_at, 0);
        EXPECT_GE(look.status.records.back().published_at, 0);
    }
}

TEST(Hostile, ThingsThatAreNoFiles)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("file", published_bytes());
    ASSERT_EQ(symlink(file.c_str(), (directory / "link").c_str()), 0);
    ASSERT_EQ(mkfifo((directory / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(Decoder(directory / "link").status().text, directory / "link" + ": damaged: a symbolic link, not a published decoder");
    EXPECT_EQ(Decoder(directory / "fifo").status().state, State::damaged);
    EXPECT_EQ(Decoder(directory.path()).status().state, State::damaged);
    EXPECT_EQ(Decoder("/dev/zero").status().state, State::damaged);
    EXPECT_EQ(Decoder(file + "/a").status().state, State::missing);
}

TEST(Hostile, AFileThatBecomesShorterIsNoSignal)
{
    const ScratchDirectory directory;
    const std::string path = directory.write("a.decstats", published_bytes());
    Decoder decoder(path);
    EXPECT_EQ(decoder.status().state, State::stale);
    ASSERT_EQ(truncate(path.c_str(), 4096), 0);
    for (int i = 0; i < 2; ++i)
    {
        const Look look = decoder.look();
        EXPECT_EQ(look.status.state, State::damaged);
        EXPECT_EQ(look.status.text, path + ": damaged: has become shorter while it was read");
        EXPECT_TRUE(look.snapshot.present.none());
    }
    EXPECT_EQ(Decoder(path).status().state, State::damaged);
}

TEST(Hostile, ASignalFromElsewhereIsNotSwallowed)
{
    const ScratchDirectory directory;
    const std::string path = directory.write("a.decstats", published_bytes());
    EXPECT_EQ(in_process(
                  [&]
                  {
                      std::signal(SIGBUS, [](int) { _exit(42); });
                      Decoder decoder(path);
                      decoder.look(); // installs its handler
                      const std::string other = directory.write("other", "x");
                      const int file = open(other.c_str(), O_RDWR | O_CLOEXEC);
                      auto* mapped = static_cast<volatile char*>(mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0));
                      if (ftruncate(file, 0) != 0) _exit(1);
                      static_cast<void>(mapped[0]);
                  }),
              42);
}

TEST(Hostile, AnyByteMayBeAnything)
{
    // Every byte of header and table as 0, as all ones and changed by one bit, and some of the others.
    const ScratchDirectory directory;
    const std::string good = published_bytes();
    const std::string path = directory.write("a.decstats", good);
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    std::array<std::size_t, 10> states = {};
    const std::size_t step = amount("STATS_HOSTILE_STEP", 97);
    for (std::size_t offset = 0; offset < good.size(); offset += offset < 656 ? 1 : step)
        for (const int value : {0x00, 0xff, good[offset] ^ 0x01, good[offset] ^ 0x80})
        {
            const char changed = static_cast<char>(value);
            ASSERT_EQ(pwrite(file, &changed, 1, static_cast<off_t>(offset)), 1);
            ++states[static_cast<std::size_t>(Decoder(path).look().status.state)];
            ASSERT_EQ(pwrite(file, &good[offset], 1, static_cast<off_t>(offset)), 1);
        }
    close(file);
    EXPECT_GT(states[static_cast<std::size_t>(State::damaged)], 100U);
    EXPECT_GT(states[static_cast<std::size_t>(State::stale)], 100U);
    EXPECT_GT(states[static_cast<std::size_t>(State::other_version)], 0U);
    EXPECT_EQ(Decoder(path).status().state, State::stale);
}

} // namespace
