// What the dictionary promises beyond what it proves while it is compiled.

#include "dictionary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "layout.h"
#include "units.h"

namespace
{

using dictionary::Array;
using dictionary::Field;
using dictionary::Kind;
using dictionary::Metric;
using dictionary::MetricType;
using dictionary::Relation;
using dictionary::Type;
using dictionary::Value;
using records::Component;
using records::Records;

const Field& field_called(std::string_view name)
{
    const auto found = dictionary::find(name);
    if (!found) throw std::invalid_argument(std::string(name));
    return *found->field;
}

/** The words of a list by the headings that stand at its margin. */
std::vector<std::pair<std::string, std::vector<std::string>>> read_list(const char* path)
{
    std::vector<std::pair<std::string, std::vector<std::string>>> list;
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    for (std::string line; std::getline(file, line);)
    {
        if (line.starts_with('#')) continue;
        if (!line.starts_with(' '))
        {
            list.emplace_back(line, std::vector<std::string>());
            continue;
        }
        std::istringstream words(line);
        for (std::string word; words >> word;) list.back().second.push_back(word);
    }
    return list;
}

bool is_plain(std::string_view name)
{
    return !name.empty() && name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == std::string_view::npos;
}

/** The bytes of one record of a Records. */
template <typename Record> std::span<const std::byte> bytes_of(const Record& record)
{
    return std::as_bytes(std::span(&record, 1));
}

} // namespace

/* ---- Names ---- */

TEST(Fields, HaveTheReleasedNames)
{
    std::size_t released_count = 0;
    for (const auto& [key, released] : read_list(RELEASED_FIELDS))
    {
        const Component* component = records::find_component(key);
        ASSERT_NE(component, nullptr) << key;
        std::vector<std::string> names;
        for (const Field& field : dictionary::fields(*component)) names.emplace_back(field.name);
        for (const std::string& name : released) EXPECT_NE(std::ranges::find(names, name), names.end()) << key << "." << name;
        EXPECT_EQ(names.size(), released.size()) << "a name of " << key << " was added and not written into " << RELEASED_FIELDS;
        released_count += released.size();
    }
    EXPECT_EQ(released_count, dictionary::field_count);
}

TEST(Fields, StandInTheOrderOfTheReports)
{
    std::size_t next = 0;
    for (const Component& component : records::components())
        for (const Field& field : dictionary::fields(component))
        {
            EXPECT_EQ(field.index, next);
            EXPECT_EQ(&field, &dictionary::fields()[next++]);
            EXPECT_EQ(field.component, component.index);
            EXPECT_EQ(&component_of(field), &component);
            EXPECT_EQ(field.full_name, std::string(component.key) + "." + std::string(field.name));
        }
    EXPECT_EQ(next, dictionary::field_count);
}

TEST(Fields, AreFoundByTheirNames)
{
    for (const Field& field : dictionary::fields())
    {
        const auto found = dictionary::find(field.full_name);
        ASSERT_TRUE(found) << field.full_name;
        EXPECT_EQ(found->field, &field);
        EXPECT_FALSE(found->element);

        const std::string last = element_name(field, field.count() - 1);
        const auto element = dictionary::find(last);
        ASSERT_TRUE(element) << last;
        EXPECT_EQ(element->field, &field);
        EXPECT_EQ(element->element.has_value(), field.array != nullptr);
        EXPECT_EQ(element->element.value_or(0), field.count() - 1);
    }
    EXPECT_EQ(element_name(field_called("tdemux.sources[].pid"), 7), "tdemux.sources[7].pid");
    for (const char* wrong :
         {"", "tdemux", "tdemux.", "pid", "tdemux.sources[10].pid", "tdemux.sources[-1].pid", "tdemux.sources[1", "tdemux.sources[1x].pid",
          "tdemux.sources[99999999999999999999].pid", "tdemux.sources.pid", "tdemux.state[0]", "clock-recovery.pcr", "TDEMUX.state"})
        EXPECT_FALSE(dictionary::find(wrong)) << wrong;
}

TEST(Fields, SayInTheirNamesWhatTheyAre)
{
    for (const Field& field : dictionary::fields())
    {
        EXPECT_EQ(field.name.ends_with("_time"), field.kind == Kind::event_time) << field.full_name;
        EXPECT_EQ(field.unit.starts_with("epoch"), field.kind == Kind::event_time) << field.full_name;
        std::string_view leaf = field.name.substr(field.name.find_last_of('.') + 1);
        const bool is_extreme = leaf.starts_with("max_") || leaf.starts_with("min_");
        EXPECT_EQ(is_extreme && field.kind != Kind::event_time, field.kind == Kind::extreme) << field.full_name;
        EXPECT_EQ(field.states != nullptr, field.kind == Kind::state) << field.full_name;
        if (field.kind == Kind::flag)
        {
            EXPECT_EQ(field.type, Type::i32) << field.full_name;
        }
        if (field.kind == Kind::state || field.kind == Kind::flag || field.kind == Kind::text)
        {
            EXPECT_EQ(field.unit, "") << field.full_name;
        }
    }
}

/* ---- Relations ---- */

TEST(Relations, AreWithinOneRecordOrElement)
{
    for (const Field& field : dictionary::fields())
    {
        EXPECT_EQ(field.relation == Relation::none, field.related == dictionary::no_field) << field.full_name;
        if (field.related == dictionary::no_field) continue;
        const Field& other = dictionary::fields()[field.related];
        EXPECT_EQ(other.component, field.component) << field.full_name;
        EXPECT_EQ(other.array, field.array) << field.full_name;
        switch (field.relation)
        {
        case Relation::last_of: // the unreleased frames go up and down and are printed as a counter
            EXPECT_TRUE(other.kind == Kind::counter || other.name == "unreleased_frames") << field.full_name;
            EXPECT_EQ(field.kind, Kind::event_time) << field.full_name;
            break;
        case Relation::at_of:
            EXPECT_EQ(field.kind, Kind::event_time) << field.full_name;
            EXPECT_TRUE(other.kind == Kind::extreme || other.kind == Kind::gauge || other.kind == Kind::state) << field.full_name;
            break;
        case Relation::max_of:
        case Relation::min_of:
            EXPECT_EQ(other.kind, Kind::gauge) << field.full_name;
            EXPECT_EQ(other.unit, field.unit) << field.full_name;
            EXPECT_TRUE(field.name.find(field.relation == Relation::max_of ? "max_" : "min_") != std::string_view::npos) << field.full_name;
            break;
        case Relation::none: break;
        }
    }
}

TEST(Relations, LeadFromAFieldToItsMoment)
{
    EXPECT_EQ(dictionary::fields()[field_called("tdemux.received_packets").moment].name, "last_received_packet_time");
    EXPECT_EQ(dictionary::fields()[field_called("tdemux.max_packet_interval").moment].name, "max_packet_interval_time");
    EXPECT_EQ(field_called("tdemux.packet_interval").moment, dictionary::no_field);
}

/* ---- States ---- */

TEST(States, HaveTheReleasedIdentifiers)
{
    std::map<std::string_view, const dictionary::States*> sets;
    for (const Field& field : dictionary::fields())
        if (field.states != nullptr) sets[field.states->name] = field.states;

    for (const auto& [name, released] : read_list(RELEASED_STATES))
    {
        ASSERT_TRUE(sets.contains(name)) << name;
        const std::span<const dictionary::State> values = sets[name]->values;
        for (const std::string& word : released)
        {
            const std::size_t equals = word.find('=');
            const bool is_unsigned = word.starts_with("0x");
            const auto value =
                is_unsigned ? static_cast<std::int64_t>(std::stoull(word, nullptr, 16)) : static_cast<std::int64_t>(std::stoll(word));
            const auto state = std::ranges::find(values, value, &dictionary::State::value);
            ASSERT_NE(state, values.end()) << name << " " << word;
            EXPECT_EQ(state->identifier, word.substr(equals + 1)) << name;
        }
        EXPECT_EQ(values.size(), released.size()) << "a value of " << name << " was added and not written into " << RELEASED_STATES;
        sets.erase(name);
    }
    EXPECT_TRUE(sets.empty());
}

TEST(States, HaveOneIdentifierForEachValue)
{
    for (const Field& field : dictionary::fields())
    {
        if (field.states == nullptr) continue;
        std::set<std::int64_t> values;
        std::set<std::string_view> identifiers;
        for (const dictionary::State& state : field.states->values)
        {
            EXPECT_TRUE(values.insert(state.value).second) << field.full_name << " " << state.identifier;
            EXPECT_TRUE(identifiers.insert(state.identifier).second) << field.full_name << " " << state.identifier;
            EXPECT_TRUE(is_plain(state.identifier)) << state.identifier;
            EXPECT_EQ(identifier(field, state.value), state.identifier);
        }
        EXPECT_EQ(identifier(field, 123456), "") << field.full_name;
    }
    EXPECT_EQ(identifier(field_called("tdemux.uptime"), 1), "");
}

TEST(States, NameEveryRaster)
{
    const Field& format = field_called("vdecoder.display_format");
    const auto code = [](UINT64 width, UINT64 height, UINT64 rate, UINT64 interlaced)
    { return static_cast<std::int64_t>(1UL << 63 | width << 22 | height << 9 | rate << 1 | interlaced); };
    EXPECT_EQ(identifier(format, code(1920, 1080, 29, 1)), "1920x1080i29");
    EXPECT_EQ(identifier(format, code(4096, 2160, 48, 0)), "4096x2160p48");
    EXPECT_EQ(identifier(format, code(8191, 8191, 255, 1)), "8191x8191i255");
    EXPECT_EQ(identifier(format, 11), "");
}

/* ---- Values ---- */

TEST(Values, AreReadAsTheirTypesSay)
{
    Records records = {};
    records.tdemux.nSize = 0xFFFFFFFFU;
    records.tdemux.enState = SMGR_TDEMUX_STATS_STATE_FAILED;
    records.tdemux.nUpTimeInSecs = 0xFFFFFFFFFFFFFFFFUL;
    records.tdemux.tSources[9].nPTS = 1UL << 63;
    records.tdemux.tLastPCR = -7;
    records.vframer.tCurrentProperties.fFrameRate = 29.97F;
    records.vframer.tCurrentProperties.colour_primaries = 200;
    std::memcpy(records.vframer.tCurrentProperties.szFraming, "AU\0PES", 6);
    std::memset(records.metadata.tChannel[3].szName, 'x', sizeof records.metadata.tChannel[3].szName);
    std::memset(records.vframer.tCurrentProperties.szPayloadID, 0x89, 4);
    records.audio.PairStats[1].tLastRxFrameTime = {.tv_sec = 17, .tv_nsec = 999999999};
    records.clock_recovery.OldPll = -27000000;

    const auto value_of = [&](std::string_view name, std::size_t element = 0)
    {
        const Field& field = field_called(name);
        return value(field, std::as_bytes(std::span(&records, 1)).subspan(component_of(field).offset, component_of(field).record_size),
                     element);
    };
    EXPECT_EQ(get<std::uint64_t>(value_of("tdemux.record_size")), std::uint64_t{0xFFFFFFFF});
    EXPECT_EQ(get<std::int64_t>(value_of("tdemux.state")), std::int64_t{-2});
    EXPECT_EQ(get<std::uint64_t>(value_of("tdemux.uptime")), 0xFFFFFFFFFFFFFFFFUL);
    EXPECT_EQ(get<std::uint64_t>(value_of("tdemux.sources[].pts", 9)), 1UL << 63);
    EXPECT_EQ(get<std::uint64_t>(value_of("tdemux.sources[].pts", 8)), 0UL);
    EXPECT_EQ(get<std::int64_t>(value_of("tdemux.last_pcr_time")), std::int64_t{-7});
    EXPECT_EQ(get<float>(value_of("vframer.stream.frame_rate")), 29.97F);
    EXPECT_EQ(get<std::uint64_t>(value_of("vframer.stream.colour_primaries")), std::uint64_t{200});
    EXPECT_EQ(get<std::string_view>(value_of("vframer.stream.framing")), std::string_view("AU"));
    EXPECT_EQ(get<std::string_view>(value_of("metadata.channels[].name", 3)), std::string_view("xxxxxxxx"));
    EXPECT_EQ(get<std::string_view>(value_of("metadata.channels[].name", 2)), std::string_view());
    const auto bytes = std::get<std::span<const std::byte>>(value_of("vframer.stream.sdi_payload_id"));
    EXPECT_EQ(bytes.size(), 4U);
    EXPECT_TRUE(std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{0x89}; }));
    EXPECT_EQ(get<dictionary::Moment>(value_of("audio.pairs[].last_received_frame_exact_time", 1)), (dictionary::Moment{17, 999999999}));
    EXPECT_EQ(get<std::int64_t>(value_of("clock_recovery.stc_frequency")), std::int64_t{-27000000});
}

TEST(Values, AreAbsentWhereTheHeaderSaysSo)
{
    SMGR_TDEMUX_STATS tdemux = {};
    const auto absent = [&](std::string_view name) { return is_absent(field_called(name), bytes_of(tdemux)); };
    EXPECT_TRUE(absent("tdemux.last_received_packet_time")); // 0 = never
    EXPECT_TRUE(absent("tdemux.stream_address.host_name"));  // empty = none
    EXPECT_TRUE(absent("tdemux.stream_address.ip"));         // all 0 = unset
    EXPECT_TRUE(absent("tdemux.last_dropped_pid"));          // 0 or less = none
    EXPECT_TRUE(absent("tdemux.max_packet_interval"));       // as long as its moment is never
    EXPECT_TRUE(absent("tdemux.pcr"));
    EXPECT_FALSE(absent("tdemux.state")); // a state has an identifier for unknown
    EXPECT_FALSE(absent("tdemux.last_error"));
    EXPECT_FALSE(absent("tdemux.received_packets")); // 0 is a measurement
    EXPECT_FALSE(absent("tdemux.sources[].received_packets"));

    tdemux.tCounters.tLastReceivedPacket = -1;
    tdemux.tStreamAddress.szHostName[0] = ' ';
    tdemux.tStreamAddress.acAddress[15] = 1;
    tdemux.tCounters.iLastPIDDropped = -5;
    tdemux.tCounters.tMaxRxPacketToPacketInterval = 1;
    tdemux.tLastPCR = 1;
    EXPECT_FALSE(absent("tdemux.last_received_packet_time"));
    EXPECT_FALSE(absent("tdemux.stream_address.host_name"));
    EXPECT_FALSE(absent("tdemux.stream_address.ip"));
    EXPECT_TRUE(absent("tdemux.last_dropped_pid"));
    EXPECT_FALSE(absent("tdemux.max_packet_interval"));
    EXPECT_FALSE(absent("tdemux.pcr"));
    tdemux.tCounters.iLastPIDDropped = 1;
    EXPECT_FALSE(absent("tdemux.last_dropped_pid"));

    SMGR_DECODER_CLOCK_RECOVERY_STATS clock = {};
    const Field& lowest = field_called("clock_recovery.recent_min_stc_frequency");
    EXPECT_TRUE(is_absent(lowest, bytes_of(clock)));
    clock.curPllAvg = 27000000;
    EXPECT_FALSE(is_absent(lowest, bytes_of(clock)));

    SMGR_VFRAMER_STATS vframer = {};
    const Field& rate = field_called("vframer.stream.frame_rate");
    EXPECT_TRUE(is_absent(rate, bytes_of(vframer)));
    vframer.tCurrentProperties.fFrameRate = -0.0F;
    EXPECT_TRUE(is_absent(rate, bytes_of(vframer)));
    vframer.tCurrentProperties.fFrameRate = __builtin_nanf("");
    EXPECT_FALSE(is_absent(rate, bytes_of(vframer)));
}

TEST(Values, AreAbsentByTheWordsOfTheHeader)
{
    for (const Field& field : dictionary::fields())
    {
        if (field.kind == Kind::event_time)
        {
            EXPECT_EQ(field.absent, "0 = never") << field.full_name;
        }
        const bool has_rule = field.absent_rule != dictionary::AbsentRule::never;
        if (has_rule)
        {
            EXPECT_FALSE(field.absent.empty()) << field.full_name;
        }
        if (!field.absent.empty() && field.kind != Kind::state)
        {
            EXPECT_TRUE(has_rule || field.absent.starts_with("with ")) << field.full_name;
        }
    }
}

TEST(Conditions, TellWhatApplies)
{
    SMGR_TDEMUX_STATS tdemux = {};
    const auto in_tdemux = [&](std::string_view name, std::size_t element = 0)
    { return applies(field_called(name), bytes_of(tdemux), element); };
    EXPECT_TRUE(in_tdemux("tdemux.received_packets"));
    EXPECT_FALSE(in_tdemux("tdemux.srt.rtt"));
    EXPECT_FALSE(in_tdemux("tdemux.fec.rows"));
    tdemux.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
    EXPECT_TRUE(in_tdemux("tdemux.srt.rtt"));
    EXPECT_FALSE(in_tdemux("tdemux.srt.sent_packets")); // a demux receives
    EXPECT_FALSE(in_tdemux("tdemux.srt.key_length"));
    tdemux.Xport.SRT.iKeyState = 17;
    EXPECT_TRUE(in_tdemux("tdemux.srt.key_length"));
    tdemux.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_RTP;
    EXPECT_FALSE(in_tdemux("tdemux.srt.rtt"));
    EXPECT_FALSE(in_tdemux("tdemux.fec.rows"));
    tdemux.enFECType = SMGR_FEC_TYPE_PRO_MPEG;
    EXPECT_TRUE(in_tdemux("tdemux.fec.rows"));
    EXPECT_FALSE(in_tdemux("tdemux.sources[].pid", 3));
    tdemux.tSources[3].tCounters.nNumReceivedPackets = 1;
    EXPECT_TRUE(in_tdemux("tdemux.sources[].pid", 3));
    EXPECT_FALSE(in_tdemux("tdemux.sources[].pid", 2));
    EXPECT_FALSE(in_tdemux("tdemux.sources[].audio_pair", 3));
    tdemux.tSources[3].enType = SMGR_TDEMUX_DATA_TYPE_AUDIO;
    EXPECT_TRUE(in_tdemux("tdemux.sources[].audio_pair", 3));

    SMGR_DECODER_AUDIO_STATS audio = {};
    const Array* pairs = dictionary::array_of(*records::find_component("audio"));
    ASSERT_NE(pairs, nullptr);
    EXPECT_FALSE(in_use(*pairs, bytes_of(audio), 7));
    audio.PairStats[7].nReceivedFrames = 1; // a pair that decodes nothing is the fault to see
    EXPECT_TRUE(in_use(*pairs, bytes_of(audio), 7));
    audio.PairStats[6].nDecodedFrames = 1;
    EXPECT_TRUE(in_use(*pairs, bytes_of(audio), 6));
    EXPECT_FALSE(in_use(*pairs, bytes_of(audio), 5));

    SMGR_METADATADEC_STATS metadata = {};
    metadata.tChannel[1].szName[0] = 'K';
    EXPECT_TRUE(applies(field_called("metadata.channels[].type"), bytes_of(metadata), 1));
    EXPECT_FALSE(applies(field_called("metadata.channels[].type"), bytes_of(metadata), 0));
    metadata.tCounters.tTCValue.bTCValid = 2; // exactly 1 is yes
    EXPECT_FALSE(applies(field_called("metadata.timecode.hours"), bytes_of(metadata)));
    metadata.tCounters.tTCValue.bTCValid = 1;
    EXPECT_TRUE(applies(field_called("metadata.timecode.hours"), bytes_of(metadata)));

    SMGR_VFRAMER_STATS vframer = {};
    vframer.tCurrentProperties.bInterlaced = 7;
    EXPECT_TRUE(applies(field_called("vframer.stream.top_field_first"), bytes_of(vframer)));
    EXPECT_FALSE(applies(field_called("vframer.previous_stream.top_field_first"), bytes_of(vframer)));
    vframer.tCounters.nNumFormatTransitions = 1;
    EXPECT_TRUE(applies(field_called("vframer.previous_stream.width"), bytes_of(vframer)));
    EXPECT_FALSE(applies(field_called("vframer.previous_stream.top_field_first"), bytes_of(vframer)));

    SMGR_DECODER_CLOCK_RECOVERY_STATS clock = {};
    for (const auto& [mode, follows] :
         std::initializer_list<std::pair<int, bool>>{{0, false}, {1, true}, {2, false}, {3, true}, {4, false}})
    {
        clock.trackingMode = mode;
        EXPECT_EQ(applies(field_called("clock_recovery.stc_frequency"), bytes_of(clock)), follows) << mode;
    }
}

TEST(Arrays, AreThoseOfTheRecords)
{
    std::map<std::string_view, const Array*> arrays;
    for (const Component& component : records::components())
        if (const Array* array = dictionary::array_of(component)) arrays[component.key] = array;
    ASSERT_EQ(arrays.size(), 4U);
    EXPECT_EQ(arrays["tdemux"]->count, 10U);
    EXPECT_EQ(arrays["audio"]->count, 8U);
    EXPECT_EQ(arrays["metadata"]->count, 4U);
    EXPECT_EQ(arrays["buffering"]->count, 10U);
    for (const auto& [key, array] : arrays)
        for (const Field& field : dictionary::fields())
        {
            const bool is_inside = field.index >= array->first_field && field.index < array->first_field + array->field_count;
            EXPECT_EQ(is_inside, field.array == array) << field.full_name;
        }
}

/* ---- Metrics ---- */

TEST(Metrics, HaveNamesByRule)
{
    const std::map<std::string_view, std::string_view> families = {
        {"tdemux.received_packets", "decoder_tdemux_received_packets"},
        {"tdemux.received_bytes", "decoder_tdemux_received_bytes"},
        {"tdemux.bit_rate", "decoder_tdemux_data_rate_bytes_per_second"},
        {"tdemux.sources[].last_received_packet_time", "decoder_tdemux_source_last_received_packet_timestamp_seconds"},
        {"tdemux.srt.rtt", "decoder_tdemux_srt_rtt_seconds"},
        {"tdemux.srt.version", "decoder_tdemux_srt"},
        {"tdemux.stream_address.ip", "decoder_tdemux"},
        {"vframer.stream.width", "decoder_vframer_stream_width_pixels"},
        {"vframer.i_pictures", "decoder_vframer_pictures"},
        {"vdecoder.load", "decoder_vdecoder_load_ratio"},
        {"buffering.state", "decoder_buffering_state"},
        {"buffering.max_buffered_bytes_time", "decoder_buffering_max_buffered_bytes_timestamp_seconds"},
        {"clock_recovery.stc_deviation_ppm", "decoder_clock_recovery_stc_deviation_ratio"},
        {"clock_recovery.audio_timestamp_distance_7", "decoder_clock_recovery_audio_timestamp_distance_seconds"},
        {"tdemux.pcr", ""},
    };
    for (const auto& [name, family] : families) EXPECT_EQ(field_called(name).metric.family, family) << name;

    EXPECT_EQ(field_called("tdemux.stream_address.ip").metric.label, "stream_address_ip");
    EXPECT_EQ(field_called("buffering.state").metric.label, "decoder_buffering_state");
    const Metric& delay = field_called("clock_recovery.audio_timestamp_distance_7").metric;
    EXPECT_EQ(delay.fixed_label, "pair");
    EXPECT_EQ(delay.fixed_value, "8");
    EXPECT_EQ(delay.multiply, 1U);
    EXPECT_EQ(delay.divide, 90000U);
    EXPECT_EQ(field_called("tdemux.srt.received_bit_rate").metric.multiply, 125U); // kbit/s to bytes/s
}

TEST(Metrics, CollideNowhere)
{
    std::map<std::string_view, const Field*> families;
    std::map<std::string, std::string_view> samples; // name and what tells the series apart, by field
    std::set<std::string> sample_names;
    for (const Field& field : dictionary::fields())
    {
        const Metric& metric = field.metric;
        EXPECT_EQ(metric.type == MetricType::none, metric.family.empty()) << field.full_name;
        if (metric.type == MetricType::none) continue;
        EXPECT_TRUE(is_plain(metric.family)) << metric.family;
        EXPECT_TRUE(metric.family.ends_with(metric.unit)) << metric.family;
        for (const char* reserved : {"_total", "_info", "_created", "_bucket", "_sum", "_count"})
            EXPECT_FALSE(metric.type != MetricType::counter && metric.family.ends_with(reserved)) << metric.family;

        const auto [family, is_new] = families.emplace(metric.family, &field);
        EXPECT_EQ(family->second->metric.type, metric.type) << field.full_name;
        EXPECT_EQ(family->second->metric.unit, metric.unit) << field.full_name;
        EXPECT_EQ(family->second->array, field.array) << field.full_name;
        EXPECT_EQ(family->second->metric.fixed_label, metric.fixed_label) << field.full_name;
        const std::string name = std::string(metric.family) + (metric.type == MetricType::counter ? "_total"
                                                               : metric.type == MetricType::info  ? "_info"
                                                                                                  : "");
        EXPECT_EQ(sample_names.insert(name).second, is_new) << name;

        const std::string_view own = metric.type == MetricType::info ? metric.label : metric.fixed_value;
        EXPECT_TRUE(samples.emplace(name + " " + std::string(own), field.full_name).second) << field.full_name << " and " << samples[name];
        if (metric.type == MetricType::info)
        {
            EXPECT_TRUE(is_plain(metric.label) && metric.label != "decoder") << metric.label;
        }
        if (field.array != nullptr)
        {
            EXPECT_NE(metric.label, field.array->label) << field.full_name;
        }
    }
}

TEST(Metrics, AreOfTheKindsOfTheFields)
{
    for (const Field& field : dictionary::fields())
    {
        const MetricType type = field.metric.type;
        if (type == MetricType::none) continue;
        EXPECT_EQ(type == MetricType::counter, field.kind == Kind::counter) << field.full_name;
        if (type == MetricType::state_set)
        {
            EXPECT_EQ(field.kind, Kind::state) << field.full_name;
        }
        if (field.kind == Kind::identity || field.kind == Kind::text)
        {
            EXPECT_EQ(type, MetricType::info) << field.full_name;
        }
        EXPECT_NE(field.metric.divide, 0U);
        if (type == MetricType::counter)
        {
            EXPECT_EQ(field.metric.divide, 1U) << field.full_name; // exact to the last unit
        }
    }
}

/* ---- Layout ---- */

TEST(Layout, IsThatOfTheFields)
{
    ASSERT_EQ(dictionary::layout.size(), dictionary::field_count);
    for (const Field& field : dictionary::fields())
    {
        const dictionary::LayoutField& place = dictionary::layout[field.index];
        EXPECT_EQ(place.name, field.full_name);
        EXPECT_EQ(place.component, field.component) << field.full_name;
        EXPECT_EQ(place.offset, field.offset()) << field.full_name;
        EXPECT_EQ(place.size, field.size) << field.full_name;
        EXPECT_EQ(place.count, field.count()) << field.full_name;
        EXPECT_EQ(place.stride, field.array == nullptr ? 0 : field.array->stride) << field.full_name;
        EXPECT_EQ(place.type, field.type) << field.full_name;
        EXPECT_LE(field.offset(field.count() - 1) + field.size, component_of(field).record_size) << field.full_name;
    }
}
