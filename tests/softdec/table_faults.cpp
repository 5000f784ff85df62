#include "table_faults.h"

#include <algorithm>
#include <bitstream/mpeg/pes.h>
#include <bitstream/mpeg/ts.h>
#include <set>

#include "fec_sender.h"
#include "injector.h"

namespace softdec_tests
{

namespace
{

using Places = std::vector<std::size_t>;

std::size_t packets_before(const TestStream& stream, softdec::Nanoseconds moment)
{
    std::size_t packets = 0;
    for (const Arrival& arrival : stream.arrivals)
        if (arrival.moment < moment) packets += arrival.bytes.size() / ts_size;
    return packets;
}

Places within(Places places, const Place& place)
{
    std::erase_if(places, [&](std::size_t at) { return at < place.first || at >= place.last; });
    return places;
}

Places video_of(const TestStream& stream, const Place& place, std::size_t n)
{
    return each(within(payloads_of(stream.bytes, video_pid), place), n);
}

Places audio_of(const TestStream& stream, const Place& place, std::size_t n)
{
    return each(within(payloads_of(stream.bytes, audio_pid), place), n);
}

Injected exact(std::vector<Arrival> arrivals, std::size_t expected)
{
    return {.arrivals = std::move(arrivals), .expected = static_cast<long>(expected)};
}

Injected at_least(std::vector<Arrival> arrivals, long expected)
{
    return {.arrivals = std::move(arrivals), .expected = expected, .at_least = true};
}

/** Changes packets where they arrive, so that they keep their moments whatever becomes of the PCR. */
std::vector<Arrival> changed(const TestStream& stream, const std::function<void(std::size_t, std::uint8_t*)>& fault)
{
    std::vector<Arrival> arrivals = stream.arrivals;
    std::size_t packet = 0;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size) fault(packet++, &arrival.bytes[at]);
    return arrivals;
}

/** The same for some packets. */
std::vector<Arrival> changed_at(const TestStream& stream, const Places& places, const std::function<void(std::uint8_t*)>& fault)
{
    return changed(stream,
                   [&](std::size_t packet, std::uint8_t* bytes)
                   {
                       if (std::ranges::binary_search(places, packet)) fault(bytes);
                   });
}

void make_null(std::uint8_t* packet)
{
    if (!pcr_of(packet)) ts_set_pid(packet, 0x1fff);
}

/** Garbage from some byte of the payload on. */
void spoil(std::uint8_t* packet, std::size_t from)
{
    unsigned value = 12345U + packet[3];
    for (std::size_t i = payload_at(packet) + from; i < ts_size; ++i)
        packet[i] = static_cast<std::uint8_t>((value = value * 1103515245U + 12345U) >> 16);
}

Injected pid_gone(const TestStream& stream, const Place& place, unsigned pid, long expected)
{
    auto places = payloads_of(stream.bytes, pid);
    std::erase_if(places, [&](std::size_t at) { return at < place.first; });
    return at_least(changed_at(stream, places, make_null), expected);
}

/** What a look at the state of things finds has to last until then. */
Place place_until_the_look(const TestStream& stream, const Place& place)
{
    Place on = place;
    on.last = packets_before(stream, place.look);
    return on;
}

/** RTP without every n-th packet of a place. */
Injected datagrams_lost(const std::vector<Arrival>& packets, const Place& place, std::size_t n, softdec::Channel channel)
{
    std::size_t number = 0;
    std::size_t lost = 0;
    std::vector<Arrival> rest;
    for (const Arrival& packet : packets)
    {
        const bool is_one = packet.channel == channel && packet.moment >= place.begin && packet.moment < place.end;
        if (is_one && ++number % n == 0)
            ++lost;
        else
            rest.push_back(packet);
    }
    return exact(rest, lost);
}

std::vector<Arrival> protected_rtp(const TestStream& stream)
{
    return with_fec(rtp(stream.arrivals), {.columns = 5, .rows = 5, .row_fec = true});
}

std::vector<TableFault> transport_faults()
{
    return {
        {"video packets lost",
         {"tdemux.lost_ts_segments"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             const auto places = video_of(stream, place, 23);
             return exact(datagrams(without(stream.bytes, places)), places.size());
         }},
        {"sound packets lost",
         {"tdemux.lost_ts_segments"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             const auto places = audio_of(stream, place, 7);
             return exact(datagrams(without(stream.bytes, places)), places.size());
         }},
        {"burst of 12 lost",
         {"tdemux.lost_ts_segments"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             auto places = video_of(stream, place, 1);
             places.erase(places.begin(), places.begin() + 20);
             places.resize(12);
             return exact(datagrams(without(stream.bytes, places)), 12);
         }},
        {"packets twice",
         {"tdemux.lost_ts_segments", "tdemux.corrupted_ts_frames"},
         {"-"},
         [](const TestStream& stream, const Place& place)
         { return exact(datagrams(duplicate(stream.bytes, video_of(stream, place, 23))), 0); }},
        {"packets overtaken",
         {"tdemux.lost_ts_segments"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             auto places = video_of(stream, place, 23);
             places.pop_back();
             return exact(datagrams(swap_with_next(stream.bytes, places)), places.size());
         }},
        {"transport errors",
         {"tdemux.corrupted_ts_frames"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             const auto places = video_of(stream, place, 29);
             return exact(changed_at(stream, places, [](std::uint8_t* packet) { ts_set_transporterror(packet); }), places.size());
         }},
        {"sync bytes lost",
         {"tdemux.corrupted_ts_frames"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             const auto places = video_of(stream, place, 31);
             return exact(changed_at(stream, places, [](std::uint8_t* packet) { packet[0] = 0x46; }), places.size());
         }},
        {"scrambled",
         {"tdemux.dropped_packets"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             const Place on = place_until_the_look(stream, place);
             auto places = video_of(stream, on, 1);
             std::ranges::copy(audio_of(stream, on, 1), std::back_inserter(places));
             std::ranges::sort(places);
             return exact(changed_at(stream, places, [](std::uint8_t* packet) { ts_set_scrambling(packet, 2); }), places.size());
         }},
        {"PES lengths wrong",
         {"tdemux.pes_size_mismatches"},
         {"ts"},
         [](const TestStream& stream, const Place& place)
         {
             const auto places = each(within(starts_of(stream.bytes, audio_pid), place), 3);
             return exact(changed_at(stream, places,
                                     [](std::uint8_t* packet)
                                     {
                                         std::uint8_t* const pes = packet + payload_at(packet);
                                         pes_set_length(pes, static_cast<std::uint16_t>(pes_get_length(pes) + 9));
                                     }),
                          places.size());
         }},
        {"video gone", {}, {"ts"}, [](const TestStream& stream, const Place& place) { return pid_gone(stream, place, video_pid, 0); }},
        {"sound gone",
         {},
         {"ts", "audio"},
         [](const TestStream& stream, const Place& place) { return pid_gone(stream, place, audio_pid, 0); }},
        {"PAT gone",
         {"tdemux.program_gone"},
         {"ts"},
         [](const TestStream& stream, const Place& place) { return pid_gone(stream, place, pat_pid, 1); }},
        {"PMT gone",
         {"tdemux.program_gone"},
         {"ts"},
         [](const TestStream& stream, const Place& place) { return pid_gone(stream, place, pmt_pid, 1); }},
    };
}

std::vector<TableFault> clock_faults()
{
    return {
        {"PCR removed",
         {"tdemux.frames_without_pcr"},
         {"clock", "ts"},
         [](const TestStream& stream, const Place& place)
         {
             return at_least(changed(stream,
                                     [&](std::size_t packet, std::uint8_t* bytes)
                                     {
                                         if (packet >= place.first) remove_pcr(bytes);
                                     }),
                             20);
         }},
        {"PCR stuck",
         {"clock_recovery.pcr_jitter_errors", "clock_recovery.resyncs"},
         {"clock"},
         [](const TestStream& stream, const Place& place)
         {
             std::uint64_t last = 0;
             return at_least(changed(stream,
                                     [&](std::size_t packet, std::uint8_t* bytes)
                                     {
                                         const auto pcr = pcr_of(bytes);
                                         if (pcr && packet < place.first) last = *pcr;
                                         if (pcr && packet >= place.first && packet < place.last) set_pcr(bytes, last);
                                     }),
                             3);
         }},
        {"clock jumps by 5 s",
         {"clock_recovery.resyncs"},
         {"clock"},
         [](const TestStream& stream, const Place& place)
         {
             return exact(changed(stream,
                                  [&](std::size_t packet, std::uint8_t* bytes)
                                  {
                                      if (packet >= place.first + 100) shift_clock(bytes, 5 * softdec::ticks_per_second);
                                  }),
                          1);
         }},
        {"clock wraps at 33 bits",
         {"tdemux.timestamp_rollovers"},
         {"-"},
         [](const TestStream& stream, const Place& place)
         {
             // All of it is moved, so that the wrap falls a second into the place.
             std::int64_t at_place = 0;
             for (std::size_t packet = 0; packet < place.first; ++packet)
                 if (const auto pcr = pcr_of(&stream.bytes[packet * ts_size])) at_place = static_cast<std::int64_t>(*pcr / 300);
             return exact(changed(stream, [&](std::size_t, std::uint8_t* bytes)
                                  { shift_clock(bytes, softdec::timestamp_range - at_place - softdec::ticks_per_second); }),
                          1);
         }},
        {"sender 100 ppm fast",
         {"clock_recovery.resyncs", "clock_recovery.pcr_jitter_errors"},
         {"-"},
         [](const TestStream& stream, const Place&)
         {
             auto arrivals = stream.arrivals;
             for (Arrival& arrival : arrivals) arrival.moment -= (arrival.moment - beginning) / 10'000;
             return exact(arrivals, 0);
         }},
        {"time stamps 3 s early",
         {"tdemux.frames_with_late_pts"},
         {"ts", "framer", "clock"},
         [](const TestStream& stream, const Place& place)
         {
             const auto places = within(starts_of(stream.bytes, video_pid), place);
             return exact(
                 changed_at(stream, places, [](std::uint8_t* packet) { shift_timestamps(packet, -3 * softdec::ticks_per_second); }),
                 places.size());
         }},
    };
}

std::vector<TableFault> network_faults()
{
    return {
        {"outage of 2 s",
         {"tdemux.resumed_stream_markers"},
         {"network"},
         [](const TestStream& stream, const Place& place)
         {
             auto arrivals = stream.arrivals;
             std::erase_if(arrivals, [&](const Arrival& arrival)
                           { return arrival.moment >= place.begin && arrival.moment < place.begin + 2 * softdec::second; });
             return exact(arrivals, 1);
         }},
        {"sender gone",
         {},
         {"network"},
         [](const TestStream& stream, const Place& place)
         {
             auto arrivals = stream.arrivals;
             std::erase_if(arrivals, [&](const Arrival& arrival) { return arrival.moment >= place.begin; });
             return exact(arrivals, 0);
         }},
        {"jitter of 150 ms",
         {"clock_recovery.pcr_jitter_errors"},
         {"network", "clock"},
         [](const TestStream& stream, const Place& place)
         {
             auto arrivals = rtp(stream.arrivals);
             for (std::size_t i = 0; i + 30 < arrivals.size(); i += 30)
                 for (std::size_t k = 0; arrivals[i].moment >= place.begin && arrivals[i].moment < place.end && k < 8; ++k)
                     arrivals[i + k].moment += 150 * softdec::millisecond;
             std::ranges::stable_sort(arrivals, {}, &Arrival::moment);
             return at_least(arrivals, 3);
         }},
        {"RTP packets lost",
         {"tdemux.lost_rtp_segments"},
         {"network", "link"},
         [](const TestStream& stream, const Place& place)
         { return datagrams_lost(rtp(stream.arrivals), place, 20, softdec::Channel::media); }},
        {"more lost than FEC holds",
         {"tdemux.fec.lost_packets"},
         {"network", "link"},
         [](const TestStream& stream, const Place& place)
         {
             // All packets of one in four matrices, which leaves nothing to rebuild them from.
             auto packets = protected_rtp(stream);
             std::set<std::uint16_t> removed;
             std::size_t number = 0;
             for (const Arrival& packet : packets)
                 if (packet.channel == softdec::Channel::media && packet.moment >= place.begin && packet.moment < place.end &&
                     ++number % 100 < 25)
                     removed.insert(sequence_of(packet));
             std::erase_if(packets, [&](const Arrival& packet)
                           { return packet.channel == softdec::Channel::media && removed.contains(sequence_of(packet)); });
             return exact(packets, static_cast<std::size_t>(outcome_of(packets, removed).lost));
         }},
        {"all FEC packets gone",
         {"tdemux.fec.lost_packets"},
         {"link"},
         [](const TestStream& stream, const Place& place)
         {
             auto packets = protected_rtp(stream);
             std::erase_if(packets, [&](const Arrival& packet)
                           { return packet.channel != softdec::Channel::media && packet.moment >= place.begin; });
             return exact(packets, 0);
         }},
        // Nothing is lost by what follows, so that there is nothing to find; the counts tell of it.
        {"RTP packets recovered",
         {"tdemux.fec.recovered_packets"},
         {"-"},
         [](const TestStream& stream, const Place& place)
         { return datagrams_lost(protected_rtp(stream), place, 26, softdec::Channel::media); }},
        {"column FEC packets lost",
         {"tdemux.fec.missing_column_packets"},
         {"-"},
         [](const TestStream& stream, const Place& place)
         { return datagrams_lost(protected_rtp(stream), place, 4, softdec::Channel::column_fec); }},
    };
}

std::vector<TableFault> content_faults()
{
    return {
        {"pictures left out",
         {"vdecoder.replayed_frames"},
         {"framer", "vdecoder", "output"},
         [](const TestStream& stream, const Place& place)
         {
             const auto chosen = each(within(starts_of(stream.bytes, video_pid), place), 17);
             return at_least(datagrams(renumber(without(stream.bytes, whole_units(stream.bytes, chosen)))),
                             static_cast<long>(chosen.size()));
         }},
        {"garbage in the video",
         {"vdecoder.concealed_pictures", "vdecoder.dropped_pictures", "vframer.slice_header_errors"},
         {"framer", "vdecoder"},
         [](const TestStream& stream, const Place& place)
         {
             auto places = video_of(stream, place, 11);
             std::erase_if(places, [&](std::size_t at) { return starts_unit(&stream.bytes[at * ts_size]); });
             return at_least(changed_at(stream, places, [](std::uint8_t* packet) { spoil(packet, 20); }), 1);
         }},
        {"garbage in the sound",
         {"audio.decoder_errors", "audio.timestamp_discontinuities"},
         {"audio"},
         [](const TestStream& stream, const Place& place)
         {
             return at_least(
                 changed_at(stream, audio_of(stream, place, 1), [](std::uint8_t* packet) { spoil(packet, starts_unit(packet) ? 14 : 0); }),
                 1);
         }},
    };
}

} // namespace

TestStream test_stream(const std::string& name)
{
    constexpr int passes = 5;
    const Bytes once = read_stream(name);
    const auto chain = run_file(once);
    const auto& pair = chain->records().audio;
    // Sound frames have 1024, 1536 or 1152 samples at 48 kHz. Each pass follows on the one before, which moves it by milliseconds.
    const std::int64_t frame = name.find("aac") != std::string::npos ? 1920 : name.find("ac3") != std::string::npos ? 2880 : 2160;
    const auto sound = static_cast<std::int64_t>(pair.nDecodedFrames) * frame;
    const std::int64_t step = Passes(once).length() - sound;

    TestStream stream{.name = name, .bytes = repeat(once, passes), .arrivals = {}};
    for (std::size_t at = 0; at < stream.bytes.size(); at += ts_size)
        if (pid_of(&stream.bytes[at]) == audio_pid)
            shift_timestamps(&stream.bytes[at], -static_cast<std::int64_t>(at / once.size()) * step);
    stream.arrivals = datagrams(stream.bytes);
    return stream;
}

Place place_at(const TestStream& stream, double position)
{
    Place place;
    place.begin = beginning + static_cast<softdec::Nanoseconds>(position * 1e9);
    place.end = place.begin + 4 * softdec::second;
    place.look = place.end + 3 * softdec::second;
    place.first = packets_before(stream, place.begin);
    place.last = packets_before(stream, place.end);
    return place;
}

std::vector<TableFault> table_faults()
{
    std::vector<TableFault> faults;
    for (const auto& some : {transport_faults(), clock_faults(), network_faults(), content_faults()})
        faults.insert(faults.end(), some.begin(), some.end());
    return faults;
}

} // namespace softdec_tests
