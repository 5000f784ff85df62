// Hosts of other releases: their records have other fields in other places.

#include <cstring>
#include <gtest/gtest.h>

#include "decoder.h"
#include "dictionary.h"
#include "published_file.h"
#include "scratch_directory.h"
#include "support.h"

namespace
{

using published::Decoder;
using published::Look;
using published::State;

PublishedFile published_sample()
{
    const ScratchDirectory directory;
    const Publisher publisher(directory.path(), "a", "host 9.9");
    publish_all(publisher.get(), sample_records("trouble"));
    const char* not_measured = "vframer.sps_errors";
    STATS_PublishNotMeasured(publisher.get(), &not_measured, 1, nullptr);
    return PublishedFile(content_of(directory / "a.decstats"));
}

Look look_at(const std::string& bytes)
{
    const ScratchDirectory directory;
    return Decoder(directory.write("a.decstats", bytes)).look();
}

/** Expects every field of the sample, but for some, which are 0 and not measured. */
void expect_sample(const Look& look, const std::vector<std::string>& without, const std::vector<std::string>& not_measured)
{
    ASSERT_EQ(look.status.state, State::stale) << look.status.text;
    ASSERT_TRUE(look.snapshot.present.all());
    records::Snapshot sample;
    sample.records = sample_records("trouble");
    std::size_t expected = 0;
    for (const dictionary::Field& field : dictionary::fields())
    {
        const records::Component& component = dictionary::component_of(field);
        const bool is_without = std::ranges::find(without, field.full_name) != without.end();
        const bool is_said = is_without || std::ranges::find(not_measured, field.full_name) != not_measured.end();
        expected += is_said;
        EXPECT_EQ(look.snapshot.not_measured[field.index], is_said) << field.full_name;
        for (std::size_t i = 0; i < field.count(); ++i)
        {
            const auto bytes = [&](const records::Snapshot& snapshot)
            {
                const std::span<const std::byte> part = snapshot.record(component).subspan(field.offset(i), field.size);
                return std::string(reinterpret_cast<const char*>(part.data()), part.size());
            };
            const std::string value = is_without ? std::string(field.size, '\0') : bytes(sample);
            EXPECT_EQ(bytes(look.snapshot), value) << field.full_name << " " << i;
        }
    }
    EXPECT_EQ(expected, without.size() + not_measured.size()) << "a name of this test is none";
}

TEST(Layouts, TheSameInAnotherOrderWithWiderRows)
{
    const PublishedFile file = published_sample();
    expect_sample(look_at(file.bytes()), {}, {"vframer.sps_errors"});
    expect_sample(look_at(file.bytes(48, 8, 16)), {}, {"vframer.sps_errors"});
    EXPECT_EQ(look_at(file.bytes(48, 8, 16)).status.host, "host 9.9");
}

TEST(Layouts, ANewerHostHasFieldsMore)
{
    PublishedFile file = published_sample();
    const FileField added = {.name = "brand_new", .member = "nBrandNew", .offset = 0, .size = 8, .count = 1, .stride = 0, .type = 4};
    for (const char* key : {"usage", "tdemux", "audio"})
    {
        FileComponent& component = file.component(key);
        component.insert(component.fields.front().offset + component.fields.front().size, added, std::string(8, '\x55'));
    }
    // A component that is not known here, with a layout and a record.
    FileComponent unknown = file.component("usage");
    unknown.key = "brand_new";
    file.components.insert(file.components.begin(), unknown);
    // The bits of what is not measured belong to the file's fields: those of vframer stand where they stood.
    expect_sample(look_at(file.bytes()), {}, {"vframer.sps_errors"});
}

TEST(Layouts, AnOlderHostHasFieldsLess)
{
    PublishedFile file = published_sample();
    file.component("usage").remove("last_clear_request_time");
    file.component("tdemux").remove("uptime");
    file.component("buffering").remove("decoder_id");
    expect_sample(look_at(file.bytes()), {"usage.last_clear_request_time", "tdemux.uptime", "buffering.decoder_id"},
                  {"vframer.sps_errors"});
}

TEST(Layouts, BitsOfWhatIsNotMeasuredFollowTheFilesOwnFields)
{
    PublishedFile file = published_sample();
    FileComponent& vframer = file.component("vframer");
    std::size_t place = 0;
    while (vframer.fields[place].name != "sps_errors") ++place;
    std::swap(vframer.fields[place], vframer.fields[place + 4]);
    const std::string now_there = vframer.fields[place].name;
    expect_sample(look_at(file.bytes()), {}, {"vframer." + now_there});

    PublishedFile without = published_sample();
    without.not_measured.resize(2); // no bit at all
    expect_sample(look_at(without.bytes()), {}, {});
}

TEST(Layouts, AFieldOfAnotherTypeOrSizeIsNotTheSameField)
{
    PublishedFile file = published_sample();
    file.component("usage").field("start_requests").type = 3; // i64 in place of u64
    file.component("vframer").field("stream_id").type = 4;    // still 4 bytes
    file.component("tdemux").field("state").size = 1;
    expect_sample(look_at(file.bytes()), {"usage.start_requests", "vframer.stream_id", "tdemux.state"}, {"vframer.sps_errors"});
}

TEST(Layouts, AComponentThatIsNeverPublishedIsNotThere)
{
    PublishedFile file = published_sample();
    std::erase_if(file.components, [](const FileComponent& component) { return component.key == "metadata"; });
    file.component("audio").sequence = 0;
    const Look look = look_at(file.bytes());
    EXPECT_EQ(look.snapshot.present.count(), records::component_count - 2);
    EXPECT_FALSE(look.snapshot.has(*records::find_component("metadata")));
    EXPECT_FALSE(look.snapshot.has(*records::find_component("audio")));
}

TEST(Layouts, ArraysOfOtherLengths)
{
    // A host with two audio pairs: the record ends behind them.
    PublishedFile shorter = published_sample();
    FileComponent& audio = shorter.component("audio");
    const dictionary::Array& pairs = *dictionary::array_of(*records::find_component("audio"));
    for (FileField& field : audio.fields)
        if (field.count > 1) field.count = 2;
    audio.record.resize(pairs.offset + 2 * pairs.stride);
    const Look look = look_at(shorter.bytes());
    ASSERT_EQ(look.status.state, State::stale) << look.status.text;
    const records::Records sample = sample_records("trouble");
    EXPECT_EQ(std::memcmp(look.snapshot.records.audio.PairStats, sample.audio.PairStats, 2 * pairs.stride), 0);
    const std::string rest(reinterpret_cast<const char*>(look.snapshot.records.audio.PairStats + 2), 6 * pairs.stride);
    EXPECT_EQ(rest, std::string(6 * pairs.stride, '\0'));
}

} // namespace
