// Files of other releases: their records have other fields in other places.

#include <gtest/gtest.h>

#include "captured.h"
#include "expectations.h"
#include "frames.h"
#include "record_layout.h"
#include "repair.h"

namespace
{

using capture::FrameType;
using capture::Output;
using dictionary::LayoutRow;
using dictionary::LayoutSection;

/** A layout that can be changed: rows and their names. */
struct Layout
{
    LayoutSection header;
    struct Row
    {
        LayoutRow place;
        std::string name;
    };
    std::vector<Row> rows;

    explicit Layout(const char* component)
    {
        const std::vector<std::byte> bytes = dictionary::layout_section(*records::find_component(component));
        std::memcpy(&header, bytes.data(), sizeof header);
        for (std::size_t i = 0; i < header.field_count; ++i)
        {
            Row row = {};
            std::memcpy(&row.place, bytes.data() + sizeof header + i * sizeof row.place, sizeof row.place);
            row.name.assign(reinterpret_cast<const char*>(bytes.data()) + row.place.name_offset, row.place.name_length);
            rows.push_back(row);
        }
    }

    std::vector<std::byte> bytes() const
    {
        Output out;
        LayoutSection own = header;
        own.field_count = static_cast<std::uint32_t>(rows.size());
        out.put(own);
        std::size_t text = sizeof own + rows.size() * sizeof(LayoutRow);
        for (const Row& row : rows)
        {
            LayoutRow place = row.place;
            place.name_offset = place.member_offset = static_cast<std::uint32_t>(text);
            place.name_length = place.member_length = static_cast<std::uint16_t>(row.name.size());
            out.put(place);
            text += row.name.size();
        }
        for (const Row& row : rows) out.put_bytes(std::as_bytes(std::span(row.name)));
        return out.bytes();
    }
};

/** A file that another program has written: one whole snapshot and one change of records of these layouts. */
class Foreign
{
public:
    Foreign& add(const Layout& layout, const std::vector<std::byte>& first, const std::vector<std::byte>& second)
    {
        const std::vector<std::byte> bytes = layout.bytes();
        std::string problem;
        const auto read = dictionary::read_layout(bytes, problem);
        EXPECT_TRUE(read) << problem;
        EXPECT_TRUE(codec_.add(*read, first_.size()));
        layouts_.push_back(bytes);
        first_.insert(first_.end(), first.begin(), first.end());
        second_.insert(second_.end(), second.begin(), second.end());
        return *this;
    }

    /** @param layouts whether they stand in the file, and where: 'f' at first, 'l' at last, '-' not */
    std::string bytes(char layouts = 'f')
    {
        Output out;
        out.put(capture::file_header());
        if (layouts == 'f') put_layouts(out);
        Output whole;
        whole.put(noon);
        whole.put(std::uint8_t{0});
        whole.put(records::Instance{}.id);
        whole.put(std::int64_t{0});
        whole.put_text("other");
        whole.put_text("other host");
        whole.put_varint(layouts_.size());
        for (const auto& layout : layouts_)
        {
            whole.put(capture::crc_of(layout));
            whole.put_varint(0);
        }
        capture::ValueCodec codec = codec_;
        codec.encode(first_, true, whole);
        const std::uint32_t crc = put_frame(out, FrameType::whole, whole.bytes());
        Output change;
        change.put(crc);
        change.put_varint(capture::fold(second));
        codec.encode(second_, false, change);
        put_frame(out, FrameType::change, change.bytes());
        if (layouts == 'l') put_layouts(out);
        return {reinterpret_cast<const char*>(out.bytes().data()), out.bytes().size()};
    }

private:
    void put_layouts(Output& out) const
    {
        for (const auto& layout : layouts_) put_frame(out, FrameType::layout, layout);
    }

    capture::ValueCodec codec_;
    std::vector<std::vector<std::byte>> layouts_;
    std::vector<std::byte> first_;
    std::vector<std::byte> second_;
};

/** The bytes of an own record. */
template <typename Record> std::vector<std::byte> bytes_of_record(const Record& record)
{
    const auto bytes = std::as_bytes(std::span(&record, 1));
    return {bytes.begin(), bytes.end()};
}

SMGR_DECODER_SDI_USAGE_STATS usage(unsigned long starts)
{
    SMGR_DECODER_SDI_USAGE_STATS record = Living("live-srt-1080i").snapshot().records.usage;
    record.nNumStarts = starts;
    return record;
}

/** The field of a name. */
const dictionary::Field& field(const char* name)
{
    return *dictionary::find(name)->field;
}

TEST(Layouts, AnOlderReleaseLacksAField)
{
    // The first counter did not exist then; everything behind it stood so much before.
    Layout layout("usage");
    const std::size_t gone = layout.rows[0].place.size;
    layout.rows.erase(layout.rows.begin());
    for (auto& row : layout.rows) row.place.offset -= static_cast<std::uint32_t>(gone);
    layout.header.record_size -= static_cast<std::uint32_t>(gone);
    std::vector<std::byte> first = bytes_of_record(usage(3));
    std::vector<std::byte> next = bytes_of_record(usage(4));
    const std::string missing = std::string(dictionary::fields(*records::find_component("usage"))[0].full_name);
    first.erase(first.begin(), first.begin() + static_cast<long>(gone));
    next.erase(next.begin(), next.begin() + static_cast<long>(gone));

    const ScratchDirectory directory;
    const Held held = held_in(directory.write("a", Foreign().add(layout, first, next).bytes()));
    expect_sound(held);
    ASSERT_EQ(held.snapshots.size(), 2u);
    EXPECT_EQ(held.snapshots[1].taken_at, noon + second);
    EXPECT_EQ(held.snapshots[1].decoder, "other");
    records::Snapshot expected = only("usage", Living("live-srt-1080i").snapshot());
    for (const dictionary::Field& one : dictionary::fields(*records::find_component("usage")))
    {
        EXPECT_EQ(held.snapshots[1].not_measured[one.index], one.full_name == missing) << one.full_name;
        const std::string value = one.full_name == missing ? std::string(one.size, '\0') : bytes_of(one, 0, expected);
        EXPECT_EQ(bytes_of(one, 0, held.snapshots[1]), value) << one.full_name;
    }
}

TEST(Layouts, ANewerReleaseHasAFieldMoreAndAComponentMore)
{
    Layout layout("usage");
    const std::uint32_t more = 8;
    for (auto& row : layout.rows) row.place.offset += more;
    layout.header.record_size += more;
    Layout::Row added = {};
    added.name = "brand_new";
    added.place.size = 3;
    added.place.count = 1;
    added.place.type = 42;
    layout.rows.insert(layout.rows.begin() + 1, added);
    const auto record = [&](unsigned long starts)
    {
        std::vector<std::byte> bytes = bytes_of_record(usage(starts));
        bytes.insert(bytes.begin(), more, static_cast<std::byte>(starts));
        return bytes;
    };
    Layout unknown("tdemux");
    std::strcpy(unknown.header.component, "hologram");
    const auto other = bytes_of_record(Living("trouble").snapshot().records.tdemux);

    const ScratchDirectory directory;
    const Held held = held_in(directory.write("a", Foreign().add(unknown, other, other).add(layout, record(7), record(8)).bytes()));
    expect_sound(held);
    ASSERT_EQ(held.snapshots.size(), 2u);
    EXPECT_EQ(held.snapshots[0].present.count(), 1u);
    EXPECT_TRUE(held.snapshots[0].not_measured.none());
    EXPECT_EQ(+held.snapshots[0].records.usage.nNumStarts, 7u);
    EXPECT_EQ(+held.snapshots[1].records.usage.nNumStarts, 8u);
    const SMGR_DECODER_SDI_USAGE_STATS expected = usage(8);
    EXPECT_EQ(std::memcmp(&held.snapshots[1].records.usage, &expected, sizeof expected), 0);
}

TEST(Layouts, AFieldOfAnotherTypeIsNotMeasured)
{
    Layout layout("usage");
    layout.rows[0].place.type = static_cast<std::uint16_t>(dictionary::Type::bytes);
    const ScratchDirectory directory;
    const Held held = held_in(directory.write("a", Foreign().add(layout, bytes_of_record(usage(3)), bytes_of_record(usage(4))).bytes()));
    ASSERT_EQ(held.snapshots.size(), 2u);
    EXPECT_TRUE(held.snapshots[1].not_measured[field("usage.start_requests").index]);
}

TEST(Layouts, OneThatStandsFurtherBehindIsFound)
{
    Layout layout("usage");
    layout.rows.pop_back();
    const ScratchDirectory directory;
    Foreign foreign;
    foreign.add(layout, bytes_of_record(usage(3)), bytes_of_record(usage(4)));
    const Held held = held_in(directory.write("a", foreign.bytes('l')));
    expect_sound(held);
    EXPECT_EQ(held.snapshots.size(), 2u);
    EXPECT_EQ(+capture::Reader(directory / "a").last()->snapshot.records.usage.nNumStarts, 4u);

    capture::repair(directory / "a", directory / "b");
    EXPECT_EQ(held_in(directory / "b").snapshots.size(), 2u);
    EXPECT_LT(content_of(directory / "b").size(), content_of(directory / "a").size() + 1);
}

TEST(Layouts, OneThatNobodyKnowsCostsItsSnapshots)
{
    Layout layout("usage");
    layout.rows.pop_back();
    const ScratchDirectory directory;
    const Held held = held_in(directory.write("a", Foreign().add(layout, bytes_of_record(usage(3)), bytes_of_record(usage(4))).bytes('-')));
    EXPECT_TRUE(held.snapshots.empty());
    ASSERT_EQ(held.losses.size(), 1u);
    EXPECT_EQ(held.losses[0].snapshots, 2u);
}

TEST(Layouts, OwnLayoutsThatAreLostAreNotNeeded)
{
    const ScratchDirectory directory;
    Foreign foreign;
    foreign.add(Layout("usage"), bytes_of_record(usage(3)), bytes_of_record(usage(4)));
    // The helper gives members the public names, so this is no layout of this program.
    EXPECT_EQ(held_in(directory.write("a", foreign.bytes('-'))).snapshots.size(), 0u);

    capture_all(directory / "b", {only("usage", Living("idle").snapshot())});
    std::string bytes = content_of(directory / "b");
    bytes[24 + 60] ^= 1; // in the layout frame, which is the first
    const Held held = held_in(directory.write("b", bytes));
    EXPECT_EQ(held.snapshots.size(), 1u);
    EXPECT_EQ(held.losses.size(), 1u);
}

TEST(Layouts, LayoutsStandInTheFileAgainEveryHour)
{
    const ScratchDirectory directory;
    records::Snapshot snapshot = only("usage", Living("idle").snapshot());
    {
        capture::Writer writer(directory / "a");
        for (int i = 0; i < 150; ++i)
        {
            writer.append(snapshot);
            snapshot.taken_at += minute;
        }
    }
    capture::FrameReader frames(directory / "a");
    ASSERT_EQ(frames.start(), capture::Start::good);
    int layouts = 0;
    for (auto part = frames.next(); part.kind != capture::FrameReader::Part::Kind::end; part = frames.next())
        layouts += part.type == FrameType::layout;
    EXPECT_EQ(layouts, 3);
}

} // namespace
