// Which lines of a report does each field of its record change? Exactly those that its row in the dictionary names.
//
// Every field is set to other values, one at a time, in several base records: the samples, and records in which everything has
// happened. Of the lines that are printed before and after, those that the row names may change at the level that it names,
// and each of them does somewhere. Lines come and go where the field itself stands on them, or where `opened` says so; and
// `chosen` names the lines on which a field chooses a word or a blank without being shown.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "capture.h"
#include "dictionary.h"
#include "frozen_clock.h"
#include "samples.h"

namespace
{

using dictionary::Field;
using dictionary::Kind;
using dictionary::Type;
using records::Component;

using Bytes = std::vector<std::byte>;
using Labels = std::set<std::string, std::less<>>;

constexpr std::array levels = {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG};

void* report_function(const Component& component)
{
    const std::array functions = {
        reinterpret_cast<void*>(STATS_PrintForTDemux),        reinterpret_cast<void*>(STATS_PrintForVFramer),
        reinterpret_cast<void*>(STATS_PrintForVideoDecoder),  reinterpret_cast<void*>(STATS_PrintForAudioDecoder),
        reinterpret_cast<void*>(STATS_PrintForMetadataDec),   reinterpret_cast<void*>(STATS_PrintForCBuffering),
        reinterpret_cast<void*>(STATS_PrintForClockRecovery), reinterpret_cast<void*>(STATS_PrintForDecoderUsage)};
    return functions.at(component.index);
}

/* ---- The lines of a report ---- */

/** A part of a report that is about one block of the record, or one element of its array. */
struct Block
{
    std::string_view component;
    std::string_view title;  // a part of its first line
    std::string_view fields; // how the names of its fields begin
};

constexpr Block blocks[] = {
    {"tdemux", "SRT Stats", "srt."},     {"tdemux", "PMFEC Stats", "fec."},
    {"tdemux", " STREAM", "sources[]."}, {"vframer", "Previous Stream Properties", "previous_stream."},
    {"audio", "AUDIO PAIR", "pairs[]."}, {"metadata", " Channel", "channels[]."},
};

/** The columns of the buffering report's table: its rows have no labels of their own. */
constexpr std::array<std::string_view, 9> columns = {"Type",     "Output Pkts", "Jitter (ms)", "PCR-to-PTS", "CBUF Delay",
                                                     "STC Lead", "Q-Level",     "Time Stamp",  "Last Output"};
constexpr std::string_view table_row = "row of the table";

/** Where a line stands: its block, the how-manieth of its kind, and its label. */
struct Place
{
    std::string_view block; // as Block::fields; empty outside
    std::size_t number = 0;
    std::string label;

    auto operator<=>(const Place&) const = default;
};

using Lines = std::map<Place, std::string>;

std::string trimmed(std::string_view text)
{
    const std::size_t start = text.find_first_not_of(' ');
    return start == std::string_view::npos ? std::string() : std::string(text.substr(start, text.find_last_not_of(' ') + 1 - start));
}

std::vector<std::string> print(const Component& component, const Bytes& record, STATS_LEVEL level)
{
    alignas(16) std::array<std::byte, sizeof(records::Records)> aligned;
    std::ranges::copy(record, aligned.begin());
    return CaptureLines([&] { component.print(report_function(component), aligned.data(), level); });
}

Lines placed(const Component& component, const std::vector<std::string>& printed)
{
    Lines lines;
    Place place;
    std::size_t block_indent = 0;
    std::map<std::string_view, std::size_t> numbers;
    bool in_table = false;
    for (const std::string& line : printed)
    {
        const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
        const std::size_t colon = line.find(": "); // "4:2:0 8bit ColorType" is one label
        place.label = trimmed(line.substr(0, colon));
        if (indent <= block_indent) place.block = {}, place.number = 0;
        if (in_table)
            place = {"channels[].", numbers["row"]++, std::string(table_row)};
        else if (colon == std::string::npos)
        {
            in_table = line.starts_with("---");
            for (const Block& block : blocks)
                if (block.component == component.name && line.find(block.title) != std::string::npos)
                    place = {block.fields, numbers[block.fields]++, trimmed(block.title)}, block_indent = indent;
        }
        if (!lines.emplace(place, line).second) ADD_FAILURE() << "two lines are called " << place.label << ", the second is\n" << line;
    }
    return lines;
}

/* ---- Base records and values ---- */

template <typename T> void put(Bytes& record, std::size_t offset, T value)
{
    std::memcpy(record.data() + offset, &value, sizeof value);
}

/** Sets a field to a number; a text gets a letter for it, bytes are all set. */
void set(Bytes& record, const Field& field, std::size_t element, std::int64_t number)
{
    const std::size_t offset = field.offset(element);
    switch (field.type)
    {
    case Type::i32:
    case Type::u32: return put(record, offset, static_cast<std::uint32_t>(number));
    case Type::i64:
    case Type::u64: return put(record, offset, number);
    case Type::u8: return put(record, offset, static_cast<std::uint8_t>(number));
    case Type::f32: return put(record, offset, static_cast<float>(number));
    case Type::timespec: return put(record, offset, std::timespec{number, 5});
    case Type::bytes: std::fill_n(record.begin() + static_cast<std::ptrdiff_t>(offset), field.size, std::byte(number)); return;
    case Type::text:
        std::fill_n(record.begin() + static_cast<std::ptrdiff_t>(offset), field.size, std::byte{0});
        if (number != 0) record[offset] = std::byte('A' + number % 20);
        return;
    }
}

/** A number that only this field has. */
std::int64_t own_number(const Field& field, std::size_t element)
{
    const auto number = static_cast<std::int64_t>(100 + field.index + 13 * element);
    switch (field.kind)
    {
    case Kind::flag: return 1;
    case Kind::state: return field.states->values.size() > 1 ? field.states->values[1].value : 3;
    case Kind::event_time: return frozen_now - 10 * number;
    case Kind::text: return number;
    case Kind::counter:
    case Kind::gauge:
    case Kind::extreme:
    case Kind::identity: break;
    }
    return field.type == Type::u8 || field.type == Type::bytes ? number % 100 + 1 : number;
}

/** A record in which every field has a value of its own, those of one block last where they share their bytes. */
Bytes full_record(const Component& component, std::string_view last_block)
{
    Bytes record(component.record_size);
    for (const bool last : {false, true})
        for (const Field& field : dictionary::fields(component))
            if (last == (!last_block.empty() && field.name.starts_with(last_block)))
                for (std::size_t element = 0; element < field.count(); ++element) set(record, field, element, own_number(field, element));
    return record;
}

struct Setting
{
    std::string_view field;
    std::int64_t value;
};

struct Base
{
    std::string_view component;
    std::string_view last_block = {};
    std::vector<Setting> settings = {};
};

const Base bases[] = {
    {"tdemux", "srt.", {{"encapsulation", 34}, {"sources[].type", SMGR_TDEMUX_DATA_TYPE_AUDIO}}},
    {"tdemux", "fec.", {{"encapsulation", 3}, {"fec_type", SMGR_FEC_TYPE_PRO_MPEG}}},
    {"tdemux", "srt.", {{"state", SMGR_TDEMUX_STATS_STATE_RESOLVING}}},
    {"tdemux", {}, {{"stream_address.ip", 0}, {"sender_address.ip", 0}}}, // the recorded address is then the host's name
    {"vframer"},
    {"vdecoder"},
    {"audio"},
    {"metadata", {}, {{"state", SMGR_METADATA_STATE_ACTIVE}, {"channels[].state", SMGR_METADATA_STATE_ACTIVE}}},
    {"buffering", {}, {{"mode", SMGR_DECSDI_BUFFERING_FIXED}}},
    {"buffering", {}, {{"mode", SMGR_DECSDI_BUFFERING_MULTISYNC}}},
    {"clock-recovery", {}, {{"tracking_mode", SMGR_CLOCK_TRACKING_ENABLED}}},
    {"clock-recovery", {}, {{"tracking_mode", SMGR_CLOCK_TRACKING_ENABLED_LOCK}}},
    {"usage"},
};

const Field& field_of(const Component& component, std::string_view name)
{
    const auto found = dictionary::find(std::string(component.key) + "." + std::string(name));
    if (!found) throw std::invalid_argument(std::string(name));
    return *found->field;
}

std::vector<Bytes> base_records(const Component& component)
{
    std::vector<Bytes> all;
    for (const Base& base : bases)
    {
        if (base.component != component.name) continue;
        Bytes record = full_record(component, base.last_block);
        for (const Setting& setting : base.settings)
        {
            const Field& field = field_of(component, setting.field);
            for (std::size_t element = 0; element < field.count(); ++element) set(record, field, element, setting.value);
        }
        all.push_back(record);
    }
    static_assert(sizeof(SAMPLES_RECORDS) == sizeof(records::Records));
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
    {
        SAMPLES_RECORDS sample;
        samples_scenarios[i].pFill(&sample, frozen_now);
        const std::span<const std::byte> bytes = std::as_bytes(std::span(&sample, 1)).subspan(component.offset, component.record_size);
        all.emplace_back(bytes.begin(), bytes.end());
    }
    return all;
}

/** @param is_full whether the record has everything; what the samples add is which lines there are, so that two values do */
std::vector<std::int64_t> values_of(const Field& field, bool is_full)
{
    std::vector<std::int64_t> values = {0, 77};
    if (!is_full) return values;
    values.insert(values.end(), {1, -1});
    if (field.kind == Kind::event_time) values.push_back(frozen_now - 3);
    if (field.kind == Kind::state && field.states->values.size() <= 20)
        for (const dictionary::State& state : field.states->values) values.push_back(state.value);
    return values;
}

/* ---- What a row names ---- */

bool in_table(const Component& component, const Field& field, std::string_view label)
{
    return component.name == "buffering" && field.array != nullptr && std::ranges::find(columns, label) != columns.end();
}

/** The label by which placed() calls a line. */
std::string label_of(const Component& component, const Field& field, std::string_view label)
{
    return std::string(in_table(component, field, label) ? table_row : label);
}

bool is_shown_at(const dictionary::ReportLine& line, STATS_LEVEL level)
{
    return line.level == STATS_LEVEL_DEFAULT || level == STATS_LEVEL_DEBUG;
}

std::string_view block_of(const Component& component, const Field& field)
{
    if (component.name == "buffering" && field.array != nullptr) return "channels[].";
    for (const Block& block : blocks)
        if (block.component == component.name && field.name.starts_with(block.fields)) return block.fields;
    return {};
}

/** The field's lines among those printed, in its own block where the label stands there, else outside of all blocks. */
std::set<Place> named(const Component& component, const Field& field, std::size_t element, const Lines& printed, STATS_LEVEL level)
{
    std::set<Place> places;
    for (const dictionary::ReportLine& line : field.lines)
    {
        if (!is_shown_at(line, level)) continue;
        const Place own = {block_of(component, field), element, label_of(component, field, line.label)};
        const Place outside = {{}, 0, std::string(line.label)};
        if (printed.contains(own))
            places.insert(own);
        else if (printed.contains(outside))
            places.insert(outside);
    }
    return places;
}

/* ---- What no row says: the lines that a field opens, and those on which it only chooses a word ---- */

struct ListedLines
{
    std::string_view field;
    std::vector<std::string_view> labels; // none = all lines
};

const ListedLines opened[] = {
    {"tdemux.state", {}},
    {"tdemux.stream_started", {}},
    {"tdemux.encapsulation", {}},
    {"tdemux.fec_type", {}},
    {"tdemux.sources[].received_packets", {}},
    {"tdemux.dropped_packets", {"Dropped Bytes", "Last PID Dropped"}},
    {"tdemux.receive_errors", {"Last Error"}},
    {"tdemux.last_error", {"Occurred"}},
    {"tdemux.srt.key_state", {"Key Length"}},
    {"vframer.state", {"Unsupported Reason"}},
    {"vframer.format_changes", {}},
    {"vdecoder.display_format", {"Video Decoder Load"}},
    {"audio.pairs[].decoded_frames", {}},
    {"metadata.state", {"Active Metadata"}},
    {"metadata.timecode.valid", {"Timecode"}},
    {"metadata.channels[].received_packets", {}},
    {"buffering.mode", {}},
    {"clock_recovery.tracking_mode", {}},
    {"clock_recovery.average_stc_frequency", {"STC Adj (last 16 min)"}},
    {"clock_recovery.late_pcrs", {"No PCR received for"}},
    {"clock_recovery.pcr_jitter_errors", {"Wrong PCR, deviation"}},
};

const ListedLines chosen[] = {
    {"tdemux.state", {"Last Error"}},                                                    // a line of another form while resolving
    {"tdemux.fec.columns", {"Level"}},                                                   // not known yet without a matrix
    {"tdemux.fec.rows", {"Level"}},                                                      //
    {"vframer.stream.compression", {"Profile", "Level"}},                                // numbers of the coding's own standard
    {"vframer.previous_stream.compression", {"Profile", "Level"}},                       //
    {"vdecoder.load", {"Display Format"}},                                               // stands behind a format that is no raster
    {"vdecoder.hardware_output_delay", {"HW Delay Theo"}},                               // a warning
    {"buffering.multisync.delay_lower_limit", {"MultiSync Delay Set"}},                  // a verdict
    {"buffering.multisync.delay_upper_limit", {"MultiSync Delay Set"}},                  //
    {"clock_recovery.average_stc_frequency", {"Status"}},                                // locked, or not known yet
    {"clock_recovery.average_stc_deviation_hz", {"Status"}},                             //
    {"clock_recovery.average_stc_deviation_ppm", {"STC Adj (last 16 min)"}},             // no PPM behind it from 100 on
    {"clock_recovery.tracking_mode", {"PCR Delta (Enc vs Reg)", "PCR reg Vs TS Delta"}}, // a warning while tracking
};

/** The entries that a list was asked for and had, so that none is left over. */
std::set<const ListedLines*> used;

/** Whether a list has this line for a field. */
bool lists(std::span<const ListedLines> list, const Field& field, std::string_view label)
{
    const auto entry = std::ranges::find(list, field.full_name, &ListedLines::field);
    if (entry == list.end() || (!entry->labels.empty() && std::ranges::find(entry->labels, label) == entry->labels.end())) return false;
    used.insert(&*entry);
    return true;
}

bool opens_blocks(const Field& field)
{
    const auto entry = std::ranges::find(opened, field.full_name, &ListedLines::field);
    return entry != std::end(opened) && entry->labels.empty();
}

/* ---- The sweep ---- */

class Report : public testing::TestWithParam<const Component*>
{
protected:
    const Component& component = *GetParam();
    const std::vector<Bytes> records = base_records(component);

    /** Whether every element of the record's array is printed, in order, so that elements and blocks have the same numbers. */
    bool is_full(std::size_t base) const { return base < records.size() - samples_scenario_count; }

    bool is_swept(const Field& field, std::size_t base, std::size_t element) const
    {
        if (field.array != nullptr && !is_full(base)) return false;
        const bool in_union = field.name.starts_with("srt.") || field.name.starts_with("fec.");
        return !in_union || applies(field, records[base], element);
    }

    /** Compares what is printed before and after a change. @return the labels of the field's lines that changed */
    Labels compare(const Field& field, std::size_t element, const Lines& before, const Lines& after, STATS_LEVEL level,
                   const std::string& what) const
    {
        Labels hit;
        bool came_or_went = false;
        const auto check_presence = [&](const Lines& from, const Lines& in)
        {
            const std::set<Place> own = named(component, field, element, from, level);
            for (const auto& [place, text] : from)
            {
                if (in.contains(place)) continue;
                came_or_went = true;
                if (own.contains(place) && (field.kind == Kind::flag || field.kind == Kind::state)) hit.insert(place.label);
                if (!own.contains(place) && !lists(opened, field, place.label))
                    ADD_FAILURE() << what << " makes a line come or go:\n" << text;
            }
        };
        check_presence(before, after);
        check_presence(after, before);
        const bool blocks_moved = came_or_went && opens_blocks(field); // those behind have other numbers now

        const std::set<Place> own = named(component, field, element, before, level);
        for (const auto& [place, text] : before)
        {
            const auto now = after.find(place);
            if (now == after.end() || now->second == text || (blocks_moved && !place.block.empty())) continue;
            if (own.contains(place))
                hit.insert(place.label);
            else if (!lists(chosen, field, place.label))
                ADD_FAILURE() << what << " changes a line that its row does not name, from\n" << text << "\nto\n" << now->second;
        }
        return hit;
    }
};

std::vector<const Component*> all_components()
{
    std::vector<const Component*> all;
    for (const Component& component : records::components()) all.push_back(&component);
    return all;
}

INSTANTIATE_TEST_SUITE_P(Of, Report, testing::ValuesIn(all_components()), [](const auto& test) { return std::string(test.param->key); });

TEST_P(Report, FieldsChangeTheLinesThatTheirRowsName)
{
    std::map<std::pair<const Field*, STATS_LEVEL>, Labels> hit;
    for (std::size_t base = 0; base < records.size(); ++base)
        for (const STATS_LEVEL level : levels)
        {
            const std::vector<std::string> printed_before = print(component, records[base], level);
            const Lines before = placed(component, printed_before);
            for (const Field& field : dictionary::fields(component))
                for (const std::size_t element : std::set<std::size_t>{0, field.count() - 1})
                    for (const std::int64_t value : values_of(field, is_full(base)))
                    {
                        if (!is_swept(field, base, element)) continue;
                        Bytes record = records[base];
                        set(record, field, element, value);
                        const std::vector<std::string> printed = print(component, record, level);
                        if (printed == printed_before) continue;
                        const std::string what = element_name(field, element) + " = " + std::to_string(value) + " on record " +
                                                 std::to_string(base) + (level == STATS_LEVEL_DEBUG ? " in debug" : "");
                        hit[std::pair(&field, level)].merge(compare(field, element, before, placed(component, printed), level, what));
                    }
        }

    for (const std::span<const ListedLines> list : {std::span<const ListedLines>(opened), std::span<const ListedLines>(chosen)})
        for (const ListedLines& entry : list)
        {
            if (!entry.field.starts_with(std::string(component.key) + ".")) continue;
            EXPECT_TRUE(used.contains(&entry)) << entry.field << " is listed and does nothing of the kind";
        }

    for (const Field& field : dictionary::fields(component))
        for (const STATS_LEVEL level : levels)
            for (const dictionary::ReportLine& line : field.lines)
            {
                if (!is_shown_at(line, level) || hit[std::pair(&field, level)].contains(label_of(component, field, line.label))) continue;
                ADD_FAILURE() << field.full_name << " does not change \"" << line.label << "\" at level " << level;
            }
}

TEST_P(Report, EveryLineIsNamedByARow)
{
    for (const STATS_LEVEL level : levels)
    {
        Labels named_lines;
        for (const Field& field : dictionary::fields(component))
            for (const dictionary::ReportLine& line : field.lines)
                if (is_shown_at(line, level)) named_lines.insert(label_of(component, field, line.label));
        for (const Bytes& record : records)
            for (const auto& [place, text] : placed(component, print(component, record, level)))
            {
                const bool is_heading = text.find(": ") == std::string::npos && place.label != table_row;
                EXPECT_TRUE(is_heading || named_lines.contains(place.label)) << "no field of " << component.name << " is shown by\n"
                                                                             << text;
            }
    }
}

} // namespace
