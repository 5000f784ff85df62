// Records are whole or not shown, whatever their writer does. Long runs: STATS_TORN_READS=10000000 STATS_KILLS=1000.

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <random>
#include <thread>

#include "decoder.h"
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

/** Fills a record whose every byte follows from one number. */
template <typename Record> void fill(Record& record, std::uint64_t number)
{
    auto* bytes = reinterpret_cast<unsigned char*>(&record);
    for (std::size_t i = 0; i < sizeof record; i += 8)
    {
        const std::uint64_t word = number * 0x9E3779B97F4A7C15U + i;
        std::memcpy(bytes + i, &word, std::min<std::size_t>(8, sizeof record - i));
    }
}

/** Whether bytes are what one number makes. */
bool is_whole(std::span<const std::byte> bytes)
{
    std::uint64_t first = 0;
    std::memcpy(&first, bytes.data(), sizeof first);
    for (std::size_t i = 0; i < bytes.size(); i += 8)
    {
        const std::uint64_t word = first + i;
        if (std::memcmp(bytes.data() + i, &word, std::min<std::size_t>(8, bytes.size() - i)) != 0) return false;
    }
    return true;
}

/** Publishes all records as fast as it can. */
[[noreturn]] void publish_forever(STATS_PUBLISHER* publisher)
{
    records::Records records;
    for (std::uint64_t number = 1;; ++number)
    {
        fill(records.tdemux, number);
        fill(records.vframer, number + 1);
        fill(records.vdecoder, number + 2);
        fill(records.audio, number + 3);
        fill(records.metadata, number + 4);
        fill(records.buffering, number + 5);
        fill(records.clock_recovery, number + 6);
        fill(records.usage, number + 7);
        // Several times each, so that copying takes more time than filling.
        for (int i = 0; i < 4; ++i) publish_all(publisher, records);
    }
}

pid_t start_writer(const ScratchDirectory& directory, const std::string& name)
{
    return start(
        [&]
        {
            STATS_PUBLISHER* publisher = STATS_PublishOpen(name.c_str(), directory.path().c_str(), nullptr, 0, nullptr);
            if (publisher != nullptr) publish_forever(publisher);
        });
}

/** Waits until a decoder has published every record. */
Decoder opened(const ScratchDirectory& directory, const std::string& name)
{
    for (int attempt = 0; attempt < 10'000; ++attempt)
    {
        Decoder decoder(published::path_of(directory.path(), name));
        if (decoder.look().snapshot.present.all()) return decoder;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw std::runtime_error(name + " publishes nothing");
}

TEST(Torn, NoReadOfManyWhileTwoProcessesWriteAtFullSpeed)
{
    const ScratchDirectory directory;
    const pid_t first = start_writer(directory, "first");
    const pid_t second = start_writer(directory, "second");
    std::array<Decoder, 2> decoders = {opened(directory, "first"), opened(directory, "second")};

    // Without a number as many as some seconds allow: a sanitizer or an emulator makes all of it slow.
    const std::uint64_t wanted = amount("STATS_TORN_READS", 100'000);
    const auto deadline =
        std::chrono::steady_clock::now() + (std::getenv("STATS_TORN_READS") == nullptr ? std::chrono::seconds(5) : std::chrono::hours(24));
    std::uint64_t whole = 0;
    std::uint64_t busy = 0;
    std::uint64_t torn = 0;
    while (whole < wanted && std::chrono::steady_clock::now() < deadline)
        for (Decoder& decoder : decoders)
        {
            const Look look = decoder.look();
            for (const records::Component& component : records::components())
            {
                const bool present = look.snapshot.has(component);
                whole += present;
                busy += look.status.records[component.index].state == RecordState::busy;
                torn += present && !is_whole(look.snapshot.record(component));
            }
        }

    // The same bytes without asking the sequence: torn ones are there to be found.
    std::uint64_t unchecked_torn = 0;
    const std::string path = published::path_of(directory.path(), "first");
    const std::size_t slot = slot_offset(content_of(path), publisher::SectionType::record, 0);
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::array<std::byte, sizeof(SMGR_TDEMUX_STATS)> bytes = {};
    for (int i = 0; i < 100'000 && unchecked_torn == 0; ++i)
    {
        ASSERT_EQ(pread(file, bytes.data(), bytes.size(), static_cast<off_t>(slot + sizeof(publisher::Slot))),
                  static_cast<ssize_t>(bytes.size()));
        unchecked_torn += !is_whole(bytes);
    }
    close(file);
    kill(first, SIGKILL);
    kill(second, SIGKILL);
    wait_for(first);
    wait_for(second);
    EXPECT_EQ(torn, 0U);
    EXPECT_GT(whole, 100U);
    EXPECT_GT(unchecked_torn, 0U) << "the writers do not write while this test reads";
    std::cout << whole << " whole, " << busy << " busy, " << torn << " torn\n";
}

TEST(Torn, NoRecordOfAWriterThatIsKilled)
{
    const std::uint64_t wanted = amount("STATS_KILLS", 25); // that come between two words of a record
    std::mt19937_64 random(20);
    std::uint64_t kills = 0;
    std::uint64_t cut_off = 0;
    std::uint64_t whole = 0;
    for (; cut_off < wanted && kills < 20 * wanted; ++kills)
    {
        const ScratchDirectory directory;
        const pid_t writer = start_writer(directory, "a");
        Decoder decoder = opened(directory, "a");
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 1000));
        kill(writer, SIGKILL);
        ASSERT_EQ(wait_for(writer), 128 + SIGKILL);

        const Look look = decoder.look();
        ASSERT_EQ(look.status.state, State::stale);
        std::uint64_t missing = 0;
        for (const records::Component& component : records::components())
        {
            const RecordState state = look.status.records[component.index].state;
            ASSERT_TRUE(state == RecordState::whole || state == RecordState::cut_off);
            ASSERT_EQ(look.snapshot.has(component), state == RecordState::whole);
            missing += state == RecordState::cut_off;
            if (state != RecordState::whole) continue;
            ++whole;
            ASSERT_TRUE(is_whole(look.snapshot.record(component))) << component.name;
        }
        ASSERT_LE(missing, 1U) << "one thread writes one record at a time";
        cut_off += missing;
    }
    // Without a number a few will do: on a busy machine an emulated writer is mostly between two records.
    EXPECT_GE(cut_off, std::getenv("STATS_KILLS") == nullptr ? 1 : wanted) << "kills do not come between two words";
    std::cout << kills << " kills: " << cut_off << " records cut off, " << whole << " whole\n";
}

TEST(Threads, PublishReadAndOpenAtOnce)
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a");
    std::atomic<bool> stop = false;
    std::array<records::Records, 2> records = {};
    std::vector<std::thread> threads;
    threads.emplace_back(
        [&]
        {
            for (std::uint64_t number = 1; !stop; ++number)
            {
                fill(records[0].tdemux, number);
                STATS_PublishForTDemux(publisher.get(), &records[0].tdemux);
            }
        });
    threads.emplace_back(
        [&]
        {
            for (std::uint64_t number = 1; !stop; ++number)
            {
                fill(records[1].audio, number);
                STATS_PublishForAudioDecoder(publisher.get(), &records[1].audio);
                STATS_PublishHeartbeat(publisher.get());
            }
        });
    for (int i = 0; i < 2; ++i)
        threads.emplace_back(
            [&, i]
            {
                while (!stop)
                {
                    const Publisher other(directory.path(), "other" + std::to_string(i));
                    STATS_PublishForDecoderUsage(other.get(), &records[0].usage);
                }
            });

    Decoder decoder(directory / "a.decstats");
    const records::Component& tdemux = *records::find_component("tdemux");
    const records::Component& audio = *records::find_component("audio");
    std::uint64_t read = 0;
    for (std::uint64_t i = 0; i < amount("STATS_THREAD_READS", 2000); ++i)
    {
        const Look look = decoder.look();
        for (const records::Component* component : {&tdemux, &audio})
        {
            if (!look.snapshot.has(*component)) continue;
            ++read;
            EXPECT_TRUE(is_whole(look.snapshot.record(*component)));
        }
        if (i % 100 == 0)
        {
            EXPECT_LE(published::list(directory.path()).decoders.size(), 3U);
        }
    }
    stop = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(read, 0U);
}

} // namespace
