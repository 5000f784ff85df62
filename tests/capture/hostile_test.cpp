// Files that are cut off, or of which a byte has changed. Nothing is shown that was not captured, everything before the damage is,
// and so is everything from the next whole snapshot on.

#include <fstream>
#include <gtest/gtest.h>
#include <random>

#include "capture_error.h"
#include "captured.h"
#include "expectations.h"
#include "repair.h"

namespace
{

using capture::FrameReader;
using capture::FrameType;

/** A frame of the small file. */
struct Place
{
    std::uint64_t begin;
    std::uint64_t end;
    FrameType type;
    std::size_t snapshot; /**< number of its snapshot, or of the next one */
};

/** A small file of one small record: three minutes of three snapshots each, a gap before the last. */
class Small
{
public:
    Small()
    {
        records::Snapshot snapshot = only("usage", Living("idle").snapshot());
        {
            capture::Writer writer(path());
            for (int i = 0; i < 9; ++i)
            {
                snapshot.taken_at = noon + i / 3 * minute + i % 3 * second;
                snapshot.records.usage.nNumGetStats += 1000 + static_cast<unsigned long>(i * i * i);
                if (i == 6) writer.mark_gap(capture::GapCause::late, "for a test");
                writer.append(snapshot);
                snapshots_.push_back(snapshot);
            }
            writer.finish();
        }
        bytes_ = content_of(path());

        FrameReader frames(path());
        EXPECT_EQ(frames.start(), capture::Start::good);
        std::size_t next = 0;
        for (auto part = frames.next(); part.kind != FrameReader::Part::Kind::end; part = frames.next())
        {
            places_.push_back({part.offset, part.offset + part.size, part.type, next});
            next += is_snapshot(part.type);
        }
        EXPECT_EQ(next, snapshots_.size());
    }

    static bool is_snapshot(FrameType type) { return type == FrameType::whole || type == FrameType::change; }

    const std::string& bytes() const { return bytes_; }
    const std::vector<records::Snapshot>& snapshots() const { return snapshots_; }
    const std::vector<Place>& places() const { return places_; }
    std::string path() const { return directory_ / "a"; }
    std::string path(const std::string& name) const { return directory_ / name; }

    /** What a file of these bytes holds. Every snapshot is one that was captured, and they are in order. */
    std::vector<std::size_t> held(const std::string& bytes, Held& held) const
    {
        directory_.write("a", bytes);
        held = held_in(path());
        return numbers(held);
    }

    std::vector<std::size_t> numbers(const Held& held) const
    {
        std::vector<std::size_t> numbers;
        for (const records::Snapshot& snapshot : held.snapshots)
        {
            const auto same = std::ranges::find(snapshots_, snapshot.taken_at, &records::Snapshot::taken_at);
            EXPECT_TRUE(same != snapshots_.end()) << "a moment that was not captured: " << snapshot.taken_at;
            if (same == snapshots_.end()) continue;
            EXPECT_EQ(differences(snapshot, *same), std::vector<std::string>());
            numbers.push_back(static_cast<std::size_t>(same - snapshots_.begin()));
        }
        EXPECT_TRUE(std::ranges::is_sorted(numbers));
        EXPECT_EQ(std::ranges::adjacent_find(numbers), numbers.end());
        return numbers;
    }

private:
    ScratchDirectory directory_;
    std::vector<records::Snapshot> snapshots_;
    std::string bytes_;
    std::vector<Place> places_;
};

std::vector<std::size_t> first_numbers(std::size_t count)
{
    std::vector<std::size_t> numbers(count);
    for (std::size_t i = 0; i < count; ++i) numbers[i] = i;
    return numbers;
}

TEST(Hostile, CutAtEveryByte)
{
    const Small small;
    for (std::size_t size = 0; size < small.bytes().size(); ++size)
    {
        SCOPED_TRACE(size);
        std::size_t whole = 0; // snapshots whose frames are whole
        std::size_t gaps = 0;
        std::uint64_t end = sizeof(capture::FileHeader);
        for (const Place& place : small.places())
        {
            if (place.end > size) break;
            end = place.end;
            whole += Small::is_snapshot(place.type);
            gaps += place.type == FrameType::gap;
        }
        const std::string cut = small.bytes().substr(0, size);
        if (size >= sizeof(capture::FileHeader))
        {
            Held held;
            EXPECT_EQ(small.held(cut, held), first_numbers(whole));
            EXPECT_TRUE(held.losses.empty()); // it may be a file that is being written
            EXPECT_EQ(held.tail, size - end);
        }

        // A capture goes on there.
        {
            std::ofstream(small.path(), std::ios::binary) << cut;
        }
        records::Snapshot next = small.snapshots().back();
        next.taken_at += second;
        {
            capture::Writer writer(small.path());
            writer.append(next);
            writer.finish();
        }
        const Held held = held_in(small.path());
        ASSERT_EQ(held.snapshots.size(), whole + 1);
        EXPECT_EQ(differences(held.snapshots.back(), next), std::vector<std::string>());
        EXPECT_EQ(held.gaps.size(), gaps + (size > 0)); // where something stood, the new snapshot stands behind a gap
        expect_sound(held);
    }
}

/** The snapshots that a change in a frame may cost: its own, and the changes that are told from it. */
bool may_be_lost(const Small& small, std::size_t byte, std::size_t snapshot)
{
    for (std::size_t i = 0; i < small.places().size(); ++i)
    {
        const Place& place = small.places()[i];
        if (byte < place.begin || byte >= place.end || !Small::is_snapshot(place.type)) continue;
        const std::size_t next_minute = (place.snapshot / 3 + 1) * 3;
        return snapshot >= place.snapshot && snapshot < next_minute;
    }
    return false;
}

/** Expects that reading survives a change of one byte, and that a repair keeps what reading shows. */
void expect_survival(const Small& small, std::size_t byte, const std::string& bytes)
{
    Held held;
    const std::vector<std::size_t> numbers = small.held(bytes, held);
    EXPECT_TRUE(!held.losses.empty() || held.tail != 0) << "the damage is not told";
    for (std::size_t i = 0; i < small.snapshots().size(); ++i)
    {
        const bool is_held = std::ranges::binary_search(numbers, i);
        EXPECT_NE(is_held, may_be_lost(small, byte, i)) << "snapshot " << i;
    }

    const std::string repaired = small.path("repaired");
    const capture::Repair repair = capture::repair(small.path(), repaired);
    EXPECT_EQ(repair.snapshots, numbers.size());
    EXPECT_EQ(repair.losses, held.losses.size());
    const Held after = held_in(repaired);
    EXPECT_EQ(small.numbers(after), numbers);
    EXPECT_EQ(after.gaps.size(), held.gaps.size() + held.losses.size());
    expect_sound(after);
    EXPECT_EQ(unlink(repaired.c_str()), 0);
}

TEST(Hostile, EveryByteChanged)
{
    const Small small;
    for (std::size_t byte = 0; byte < small.bytes().size(); ++byte)
        for (const int change : {0x01, 0x80, 0xFF})
        {
            SCOPED_TRACE("byte " + std::to_string(byte) + " xor " + std::to_string(change));
            std::string bytes = small.bytes();
            bytes[byte] = static_cast<char>(bytes[byte] ^ change);
            expect_survival(small, byte, bytes);
            if (::testing::Test::HasFailure()) return;
        }
}

TEST(Hostile, EveryFrameMissing)
{
    const Small small;
    for (const Place& place : small.places())
    {
        SCOPED_TRACE(place.begin);
        std::string bytes = small.bytes();
        bytes.erase(place.begin, place.end - place.begin);
        Held held;
        const std::vector<std::size_t> numbers = small.held(bytes, held);
        for (std::size_t i = 0; i < small.snapshots().size(); ++i)
            EXPECT_NE(std::ranges::binary_search(numbers, i), may_be_lost(small, place.begin, i)) << i;
        const bool others_are_lost = place.type == FrameType::whole || (place.type == FrameType::change && place.snapshot % 3 == 1);
        EXPECT_EQ(!held.losses.empty(), others_are_lost);
    }
}

TEST(Hostile, FramesTwiceOrInAnotherOrder)
{
    const Small small;
    std::mt19937_64 random(1);
    for (int round = 0; round < 300; ++round)
    {
        std::string bytes = small.bytes().substr(0, sizeof(capture::FileHeader));
        for (int i = 0; i < 25; ++i)
        {
            const Place& place = small.places()[random() % small.places().size()];
            bytes += small.bytes().substr(place.begin, place.end - place.begin);
        }
        {
            std::ofstream(small.path(), std::ios::binary) << bytes;
        }
        for (const records::Snapshot& snapshot : held_in(small.path()).snapshots)
        {
            const auto same = std::ranges::find(small.snapshots(), snapshot.taken_at, &records::Snapshot::taken_at);
            ASSERT_TRUE(same != small.snapshots().end());
            ASSERT_EQ(differences(snapshot, *same), std::vector<std::string>());
        }
    }
}

TEST(Hostile, RangesOverwritten)
{
    const Small small;
    std::mt19937_64 random(2);
    for (int round = 0; round < 1000; ++round)
    {
        std::string bytes = small.bytes();
        const std::size_t begin = random() % bytes.size();
        const std::size_t size = std::min<std::size_t>(random() % 600, bytes.size() - begin);
        for (std::size_t i = begin; i < begin + size; ++i) bytes[i] = static_cast<char>(round % 2 == 0 ? 0 : random());
        Held held;
        if (begin >= sizeof(capture::FileHeader)) small.held(bytes, held);
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(Hostile, AFrameBehindZerosIsFoundHoweverManyThereAre)
{
    const ScratchDirectory directory;
    const std::string header = Small().bytes().substr(0, sizeof(capture::FileHeader));
    for (std::size_t zeros = 1; zeros <= 40; ++zeros)
    {
        capture::Output frame;
        put_frame(frame, FrameType::whole, std::vector<std::byte>(256)); // the first byte of its word is 0 too
        const std::string behind(reinterpret_cast<const char*>(frame.bytes().data()), frame.bytes().size());
        FrameReader frames(directory.write("zeros", header + std::string(zeros, '\0') + behind));
        ASSERT_EQ(frames.start(), capture::Start::good);
        const auto lost = frames.next();
        EXPECT_EQ(lost.kind, FrameReader::Part::Kind::lost) << zeros;
        EXPECT_EQ(lost.size, zeros);
        EXPECT_EQ(frames.next().kind, FrameReader::Part::Kind::frame) << zeros;
    }
}

TEST(Hostile, LookingForMomentsInDamagedFilesShowsWhatWasCaptured)
{
    const Small small;
    std::mt19937_64 random(3);
    for (int round = 0; round < 1000; ++round)
    {
        std::string bytes = small.bytes();
        char& byte = bytes[24 + random() % (bytes.size() - 24)];
        byte = static_cast<char>(byte + 1 + static_cast<int>(random() % 255));
        {
            std::ofstream(small.path(), std::ios::binary) << bytes;
        }
        capture::Reader reader(small.path());
        for (const records::Snapshot& snapshot : small.snapshots())
        {
            const auto found = reader.at(snapshot.taken_at);
            if (!found) continue;
            const auto same = std::ranges::find(small.snapshots(), found->snapshot.taken_at, &records::Snapshot::taken_at);
            ASSERT_TRUE(same != small.snapshots().end());
            ASSERT_EQ(differences(found->snapshot, *same), std::vector<std::string>());
            ASSERT_LE(found->snapshot.taken_at, snapshot.taken_at);
            if (snapshot.taken_at % minute / second % 60 == 2 || found->snapshot.taken_at == snapshot.taken_at) continue;
            ASSERT_TRUE(found->loss || found->snapshot.taken_at / minute != snapshot.taken_at / minute);
        }
    }
}

/** Bytes that look like a long change: two equal words of one, with all between them and the CRC as it was. */
TEST(Hostile, MomentsWithinWhatSeemsAChangeAreFound)
{
    const Small small;
    const auto& places = small.places();
    for (auto first = places.begin(); first != places.end(); ++first)
        for (auto last = std::next(first); last != places.end(); ++last)
            for (const std::uint64_t end : {last->end, last->end - 3}) // where a frame ends, and where none does
            {
                const std::uint32_t word = capture::frame_word(FrameType::change, end - first->begin - capture::frame_overhead);
                std::string bytes = small.bytes();
                std::memcpy(bytes.data() + first->begin, &word, sizeof word);
                std::memcpy(bytes.data() + end - sizeof word, &word, sizeof word);
                Held held;
                const auto numbers = small.held(bytes, held);
                capture::Reader reader(small.path());
                const auto latest = reader.last();
                ASSERT_EQ(latest.has_value(), !numbers.empty()) << first->begin << ' ' << end;
                if (!latest) continue;
                EXPECT_EQ(latest->snapshot.taken_at, small.snapshots()[numbers.back()].taken_at);
                for (const std::size_t number : numbers)
                {
                    const auto found = reader.at(small.snapshots()[number].taken_at);
                    ASSERT_TRUE(found) << first->begin << ' ' << end;
                    EXPECT_EQ(found->snapshot.taken_at, small.snapshots()[number].taken_at);
                }
            }
}

std::string as_text(capture::Output& out)
{
    return {reinterpret_cast<const char*>(out.bytes().data()), out.bytes().size()};
}

/** Of a frame only the beginning is left, and where it would end, the next one has the same word: they are alike. */
TEST(Hostile, WholeFramesWithinOneThatLacksBytesAreRead)
{
    const ScratchDirectory directory;
    const auto texts = {"one", "two", "six"};
    capture::Output out;
    out.put(capture::file_header());
    for (const char* text : texts) capture::put_frame(out, FrameType::end, std::as_bytes(std::span(text, 3)));
    const std::size_t frame = capture::frame_overhead + 3;
    // The word of a frame of two frames and a half: its second word would stand in the third.
    const std::uint32_t word = capture::frame_word(FrameType::gap, 2 * frame);
    std::string bytes = as_text(out);
    std::string cut(reinterpret_cast<const char*>(&word), sizeof word);
    cut.append(4, 'x');
    bytes.insert(sizeof(capture::FileHeader), cut);
    bytes.insert(sizeof(capture::FileHeader) + capture::frame_head + 2 * frame, cut.substr(0, 4));
    directory.write("a", bytes);

    FrameReader frames(directory / "a");
    ASSERT_EQ(frames.start(), capture::Start::good);
    std::vector<std::string> read;
    std::uint64_t lost = 0;
    for (auto part = frames.next(); part.kind != FrameReader::Part::Kind::end; part = frames.next())
    {
        if (part.kind == FrameReader::Part::Kind::lost) lost += part.size;
        if (part.kind == FrameReader::Part::Kind::frame) read.emplace_back(reinterpret_cast<const char*>(part.payload.data()), 3);
    }
    EXPECT_EQ(read, (std::vector<std::string>{"one", "two", "six"}));
    EXPECT_EQ(lost, cut.size() + sizeof word);
}

/* ---- files that make work: counted, as a clock tells of the machine ---- */

using Kind = FrameReader::Part::Kind;

/** A file whose every fourth byte begins what looks like one of the longest frames, with a frame behind. */
TEST(Hostile, SearchingCostsSomeTimesTheFileAtMost)
{
    const ScratchDirectory directory;
    capture::Output out;
    out.put(capture::file_header());
    const std::uint32_t word = capture::frame_word(FrameType::change, capture::longest_payload - 4);
    out.put(std::uint8_t{0});
    for (int i = 0; i < 3 << 18; ++i) out.put(word); // 3 MiB: a million CRCs of a MiB, if each were worked out
    out.put(std::uint8_t{0});
    const std::size_t begin = out.bytes().size();
    capture::put_frame(out, FrameType::end, std::as_bytes(std::span("an end of a capture")));
    directory.write("a", as_text(out));

    FrameReader frames(directory / "a");
    ASSERT_EQ(frames.start(), capture::Start::good);
    std::uint64_t offset = 0;
    for (auto part = frames.next(); part.kind != Kind::end; part = frames.next())
        if (part.kind == Kind::frame) offset = part.offset;
    EXPECT_EQ(offset, begin);
    const std::uint64_t most = capture::longest_frame + (1 + FrameReader::checks_a_byte) * out.bytes().size();
    EXPECT_LE(frames.search_cost(), most);
    EXPECT_GT(frames.search_cost(), most / 4); // it is such a file

    // What has been found once is not looked for again.
    const std::uint64_t cost = frames.search_cost();
    frames.seek(sizeof(capture::FileHeader));
    EXPECT_EQ(frames.next().kind, Kind::lost);
    EXPECT_EQ(frames.offset(), begin);
    EXPECT_EQ(frames.search_cost(), cost);
}

/** A file with snapshots whose layouts are nowhere, and behind them much that is no frame. */
TEST(Hostile, WhatEndsAFileIsSearchedOnce)
{
    const ScratchDirectory directory;
    capture::Output out;
    out.put(capture::file_header());
    out.put_bytes(std::vector<std::byte>(1 << 20, std::byte{0x55}));
    directory.write("a", as_text(out));
    FrameReader frames(directory / "a");
    ASSERT_EQ(frames.start(), capture::Start::good);
    for (int i = 0; i < 1000; ++i)
    {
        frames.seek(sizeof(capture::FileHeader));
        ASSERT_EQ(frames.next().kind, Kind::end);
    }
    EXPECT_LE(frames.search_cost(), out.bytes().size());

    // It may have become a frame when the file has grown.
    capture::put_frame(out, FrameType::end, {});
    directory.write("a", as_text(out));
    EXPECT_EQ(frames.next().kind, Kind::lost);
    EXPECT_EQ(frames.next().kind, Kind::frame);
}

} // namespace
