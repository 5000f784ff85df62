/* Each field is either measured by some stream or fault of the tests, or declared as not measured and then never filled. */
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <string>

#include "chain/not_measured.h"
#include "dictionary.h"
#include "injector.h"

namespace softdec_tests
{

namespace
{

using softdec::Abilities;

std::set<std::string> declared(const Abilities& abilities)
{
    const auto names = softdec::fields_not_measured(abilities);
    return {names.begin(), names.end()};
}

/** Whether a field is anything but zero bytes in some element. */
bool is_filled(const dictionary::Field& field, const records::Records& records)
{
    const auto* const record = reinterpret_cast<const std::byte*>(&records) + dictionary::component_of(field).offset;
    for (std::size_t element = 0; element < field.count(); ++element)
    {
        const auto* const bytes = record + field.offset(element);
        if (std::any_of(bytes, bytes + field.size, [](std::byte byte) { return byte != std::byte{0}; })) return true;
    }
    return false;
}

/** A field whose bytes belong to another one: the FEC receiver and the SRT link share theirs. */
bool shares_bytes(const dictionary::Field& field)
{
    return field.full_name.starts_with("tdemux.srt.");
}

TEST(NotMeasured, EveryNameIsAField)
{
    for (const Abilities& abilities :
         {Abilities{}, Abilities{.has_arrivals = false, .decode = false, .live = false}, Abilities{.live = false}})
    {
        std::set<std::string> once;
        for (const char* name : softdec::fields_not_measured(abilities))
        {
            EXPECT_TRUE(std::ranges::any_of(dictionary::fields(), [name](const auto& field) { return field.full_name == name; })) << name;
            EXPECT_TRUE(once.insert(name).second) << name << " twice";
        }
    }
}

void expect_unfilled(const records::Records& records, const Abilities& abilities)
{
    const auto names = declared(abilities);
    for (const dictionary::Field& field : dictionary::fields())
    {
        if (!names.contains(std::string(field.full_name)) || shares_bytes(field)) continue;
        EXPECT_FALSE(is_filled(field, records)) << field.full_name;
    }
}

TEST(NotMeasured, IsNeverFilled)
{
    const Abilities capture = {.has_arrivals = true, .decode = true, .live = false};
    const Abilities file = {.has_arrivals = false, .decode = true, .live = false};
    const Abilities framed = {.has_arrivals = true, .decode = false, .live = false};
    expect_unfilled(run(read_capture("rtp-fec.pcap"))->records(), capture);
    for (const char* name : {"h264-aac-klv.ts", "h265-ac3.ts", "h264i-mp2.ts"})
    {
        expect_unfilled(run(datagrams(read_stream(name)))->records(), capture);
        expect_unfilled(run_file(read_stream(name))->records(), file);
        expect_unfilled(run(datagrams(read_stream(name)), false)->records(), framed);
    }
}

/** What the streams of the tests and the faults in this test do not come to: each is filled by the code beside its kin. */
bool is_seldom(std::string_view name)
{
    static const std::set<std::string_view> names = {

    };
    return names.contains(name);
}

TEST(Measured, IsFilledBySomeStream)
{
    std::vector<records::Records> all;
    all.push_back(run(read_capture("rtp-fec.pcap"))->records());
    for (const char* name : {"h264-aac.ts", "h264-aac-klv.ts", "h265-ac3.ts", "h264i-mp2.ts"})
    {
        const Bytes stream = read_stream(name);
        all.push_back(run(datagrams(repeat(stream, 5)))->records());
        // Many faults at once: here it is the kinds that count.
        auto faulty = without(stream, each(payloads_of(stream, video_pid), 61));
        faulty = change(faulty, each(payloads_of(faulty, audio_pid), 23), [](std::uint8_t* packet) { packet[1] |= 0x80; });
        all.push_back(run(rtp(datagrams(faulty)))->records());
    }
    // A step of the clock, an outage, packets out of the capture.
    auto arrivals = datagrams(read_stream("h264-aac.ts"));
    for (std::size_t i = arrivals.size() / 2; i < arrivals.size(); ++i)
        for (std::size_t at = 0; at < arrivals[i].bytes.size(); at += ts_size) shift_clock(&arrivals[i].bytes[at], 450000);
    all.push_back(run(arrivals)->records());
    arrivals = read_capture("rtp-fec.pcap");
    arrivals.erase(arrivals.begin() + 60, arrivals.begin() + 120);
    all.push_back(run(arrivals)->records());
    arrivals.erase(arrivals.begin(), arrivals.begin() + 40);
    all.push_back(run(arrivals)->records());

    const auto names = declared({.has_arrivals = true, .decode = true, .live = false});
    for (const dictionary::Field& field : dictionary::fields())
    {
        if (names.contains(std::string(field.full_name)) || is_seldom(field.full_name)) continue;
        EXPECT_TRUE(std::ranges::any_of(all, [&](const auto& records) { return is_filled(field, records); })) << field.full_name;
    }
}

} // namespace

} // namespace softdec_tests
