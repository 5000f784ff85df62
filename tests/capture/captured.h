/**
 * @file captured.h
 * What the tests of capture files share: living decoders, files of them, what files hold, and snapshots compared.
 */
#ifndef CAPTURED_H
#define CAPTURED_H

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "capture_reader.h"
#include "capture_writer.h"
#include "dictionary.h"
#include "scratch_directory.h"
#include "simulation.h"
#include "snapshot.h"

inline constexpr std::int64_t second = 1'000'000'000;
inline constexpr std::int64_t minute = 60 * second;
inline constexpr std::int64_t noon = 1'800'000'000 * second; // 2027-01-15T08:00:00Z

/** A decoder that lives. */
class Living
{
public:
    explicit Living(const std::string& scenario, std::int64_t start = noon)
        : simulation_(scenario, 1, samples::Simulation::Moment(std::chrono::nanoseconds(start)))
    {
    }

    records::Snapshot snapshot() const
    {
        records::Snapshot snapshot;
        snapshot.decoder = "studio-1";
        snapshot.host = "host 1.0";
        snapshot.instance = records::Instance{.id = {1, 2, 3}, .started_at = noon - minute};
        snapshot.taken_at = simulation_.now().time_since_epoch().count();
        static_assert(sizeof snapshot.records == sizeof simulation_.records());
        std::memcpy(&snapshot.records, &simulation_.records(), sizeof snapshot.records);
        snapshot.present.set();
        return snapshot;
    }

    /** So many snapshots, one each interval. */
    std::vector<records::Snapshot> snapshots(std::size_t count, std::int64_t interval = second)
    {
        std::vector<records::Snapshot> all;
        for (std::size_t i = 0; i < count; ++i)
        {
            all.push_back(snapshot());
            simulation_.advance(std::chrono::nanoseconds(interval));
        }
        return all;
    }

private:
    samples::Simulation simulation_;
};

/** A snapshot with the record of one component alone, which makes small files. */
inline records::Snapshot only(const char* component, records::Snapshot snapshot)
{
    const records::Component& one = *records::find_component(component);
    const records::Snapshot all = snapshot;
    snapshot.records = {};
    snapshot.present.reset();
    snapshot.put(one, all.record(one));
    return snapshot;
}

inline void append_all(capture::Writer& writer, const std::vector<records::Snapshot>& snapshots)
{
    for (const records::Snapshot& snapshot : snapshots) writer.append(snapshot);
}

/** Captures snapshots into a file, and ends in order. */
inline void capture_all(const std::string& path, const std::vector<records::Snapshot>& snapshots)
{
    capture::Writer writer(path);
    append_all(writer, snapshots);
    writer.finish();
}

/** All that a file holds. */
struct Held
{
    std::vector<records::Snapshot> snapshots;
    std::vector<capture::Gap> gaps;
    std::vector<capture::Restart> restarts;
    std::vector<capture::Loss> losses;
    std::size_t ends = 0;
    std::uint64_t tail = 0;
};

inline Held rest_of(capture::Reader& reader)
{
    Held held;
    while (const auto event = reader.next())
    {
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event)) held.snapshots.push_back(**snapshot);
        if (const auto* gap = std::get_if<capture::Gap>(&*event)) held.gaps.push_back(*gap);
        if (const auto* restart = std::get_if<capture::Restart>(&*event)) held.restarts.push_back(*restart);
        if (const auto* loss = std::get_if<capture::Loss>(&*event)) held.losses.push_back(*loss);
        if (std::holds_alternative<capture::End>(*event)) ++held.ends;
    }
    held.tail = reader.tail();
    return held;
}

inline Held held_in(const std::string& path)
{
    capture::Reader reader(path);
    return rest_of(reader);
}

/** The bytes of a field. */
inline std::string bytes_of(const dictionary::Field& field, std::size_t element, const records::Snapshot& snapshot)
{
    const auto bytes = snapshot.record(dictionary::component_of(field)).subspan(field.offset(element), field.size);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/** In what two snapshots differ: names of fields, and of what else a snapshot has. Bytes of no field do not count. */
inline std::vector<std::string> differences(const records::Snapshot& one, const records::Snapshot& other)
{
    std::vector<std::string> names;
    if (one.decoder != other.decoder) names.emplace_back("decoder");
    if (one.host != other.host) names.emplace_back("host");
    if (one.instance != other.instance) names.emplace_back("instance");
    if (one.taken_at != other.taken_at) names.emplace_back("taken_at");
    if (one.present != other.present) names.emplace_back("present");
    if (one.not_measured != other.not_measured) names.emplace_back("not_measured");
    if (std::memcmp(&one.records, &other.records, sizeof one.records) == 0) return names;
    for (const dictionary::Field& field : dictionary::fields())
        for (std::size_t i = 0; i < field.count(); ++i)
            if (bytes_of(field, i, one) != bytes_of(field, i, other)) names.push_back(dictionary::element_name(field, i));
    return names;
}

#endif
