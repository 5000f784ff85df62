#include "chain/chain.h"

#include <algorithm>

namespace softdec
{

namespace
{

/** The chain moves on this finely, so that what is due is not done late because no datagram came. Steps end at whole multiples,
 *  so that looking at the records at a whole second changes nothing [ns]. */
constexpr Nanoseconds step_length = 5 * millisecond;

Nanoseconds next_step(Nanoseconds moment)
{
    return moment - moment % step_length + step_length;
}

/** A silence is lived through as far as what is buffered lasts; the rest of it passes at once. */
constexpr Nanoseconds longest_silence = 20 * second;

/** A longer step of the PCR is a jump: time does not follow it. */
constexpr std::int64_t longest_pcr_step = 27'000'000;

} // namespace

Chain::Chain(const Settings& settings)
    : settings_(settings), recovery_(clock_, records_.clock_recovery, settings.has_arrivals),
      reception_(clock_, records_.tdemux, settings.has_arrivals,
                 [this](std::span<const std::uint8_t> bytes, std::optional<Nanoseconds> arrival)
                 { demux_.feed(bytes, arrival, reception_.packet_distance()); }),
      demux_(clock_, recovery_, records_.tdemux,
             {.program = [this](const Program& program) { configure(program); },
              .packet = [this](ElementaryPacket packet) { buffering_.take(std::move(packet)); },
              .pcr = [this](Pcr pcr, std::optional<Nanoseconds> arrival, bool announced) { return arrival_of(pcr, arrival, announced); }}),
      buffering_(clock_, recovery_, records_.buffering, settings.has_arrivals,
                 [this](ElementaryPacket packet) { decode(std::move(packet)); }),
      framer_(clock_, records_.vframer, [this](Picture picture) { take_picture(std::move(picture)); }),
      decoder_(clock_, records_.vdecoder, settings.live, [this](const DecodedPicture& picture) { show(picture); }),
      output_(clock_, records_.vdecoder), metadata_(clock_, records_.metadata)
{
    if (!settings.has_arrivals) clock_.advance_to(settings.start);
    records_.audio.nSize = sizeof records_.audio;
    records_.audio.enState = SMGR_AUDDEC_STATE_IDLE;
}

void Chain::take(const Datagram& datagram, const InputStatus& status)
{
    if (datagram.arrival) run_to(*datagram.arrival);
    if (records_.usage.nNumStarts == 0)
    {
        records_.usage.nNumStarts = 1;
        records_.usage.tLastStart = clock_.seconds();
    }
    reception_.take(status);
    reception_.take(datagram);
    buffering_.set_transport_hold(reception_.longest_hold());
    auto& counters = records_.buffering.tCounters;
    counters.nNumPCRPackets = counters.nNumPCRUpdates = records_.clock_recovery.PcrUpdates;
    counters.tLastPCRUpdate = records_.clock_recovery.tLastPcrUpdate;
}

void Chain::run_to(Nanoseconds moment)
{
    if (clock_.now() == 0) clock_.advance_to(moment);
    const Nanoseconds end = std::min(moment, clock_.now() + longest_silence);
    while (clock_.now() < end)
    {
        clock_.advance_to(std::min(next_step(clock_.now()), end));
        step();
    }
    clock_.advance_to(moment);
}

/** Without arrival times it is the PCR that time goes by. */
std::optional<Nanoseconds> Chain::arrival_of(Pcr pcr, std::optional<Nanoseconds> arrival, bool announced)
{
    if (settings_.has_arrivals) return arrival;
    constexpr std::int64_t range = std::int64_t{300} * timestamp_range;
    std::int64_t step = last_pcr_ ? (static_cast<std::int64_t>(pcr) - static_cast<std::int64_t>(*last_pcr_) + range) % range : 0;
    last_pcr_ = pcr;
    // How long it took to another time base does not stand in the stream: as long as to the PCR before, most likely.
    if (announced && last_step_ != 0 && step > 2 * last_step_) step = last_step_;
    if (step <= longest_pcr_step)
    {
        last_step_ = step;
        run_to(clock_.now() + step * 1000 / 27);
    }
    return clock_.now();
}

void Chain::step()
{
    buffering_.step();
    framer_.step();
    const auto stc = buffering_.stc();
    output_.step(stc);
    metadata_.step(stc);
    for (const auto& pair : audio_)
        if (pair) pair->output().step(stc, output_.shown(), output_.period());
    auto& automatic = records_.buffering.tAutomatic;
    automatic.tLastVideoSkipReplayTime = output_.last_irregular();
    for (const auto& pair : records_.audio.PairStats)
        if (pair.tLastSkippedFrame > automatic.tLastAudioSkipTime) automatic.tLastAudioSkipTime = pair.tLastSkippedFrame;
}

void Chain::configure(const Program& program)
{
    buffering_.configure(program.streams);
    records_.audio.nNumOfPairs = 0;
    for (std::size_t i = 0; i < audio_.size(); ++i)
    {
        const auto stream = std::ranges::find(program.streams, static_cast<int>(i) + 1, &ElementaryStream::audio_pair);
        if (stream == program.streams.end())
        {
            audio_[i].reset();
            continue;
        }
        ++records_.audio.nNumOfPairs;
        if (!audio_[i]) audio_[i] = std::make_unique<AudioPair>(clock_, records_.audio.PairStats[i], settings_.decode, settings_.live);
    }
}

void Chain::decode(ElementaryPacket packet)
{
    const auto stc = buffering_.stc();
    switch (packet.stream.type)
    {
    case SMGR_TDEMUX_DATA_TYPE_VIDEO:
        video_compression_ = packet.stream.compression;
        framer_.take(std::move(packet));
        break;
    case SMGR_TDEMUX_DATA_TYPE_AUDIO:
    {
        const auto& pair = audio_.at(static_cast<std::size_t>(packet.stream.audio_pair) - 1);
        if (!pair) break;
        records_.audio.enState = SMGR_AUDDEC_STATE_ACTIVE;
        pair->take(packet, stc, [this](Ticks lead) { buffering_.take_lead(SMGR_TDEMUX_DATA_TYPE_AUDIO, lead); });
        break;
    }
    case SMGR_TDEMUX_DATA_TYPE_KLV: metadata_.take_klv(packet, packet.stream.synchronous_metadata, stc); break;
    default: break;
    }
}

void Chain::take_picture(Picture picture)
{
    metadata_.take_picture(picture.metadata, picture.pts, picture.time_base.number, buffering_.stc());
    if (settings_.decode) decoder_.take(std::move(picture), video_compression_);
}

void Chain::show(const DecodedPicture& picture)
{
    const auto stc = buffering_.stc();
    if (stc && picture.pts) buffering_.take_lead(SMGR_TDEMUX_DATA_TYPE_VIDEO, *picture.pts - *stc);
    output_.take(picture, stc);
}

void Chain::finish(const std::function<void()>& look)
{
    reception_.finish();
    demux_.finish();
    update_input();
    ended_ = true;
    // Each stream ends when its last packet has been passed on, whatever the others still have.
    bool video_ended = false;
    bool audio_ended = false;
    const auto end_streams = [&]
    {
        if (!video_ended && !buffering_.holds(SMGR_TDEMUX_DATA_TYPE_VIDEO))
        {
            video_ended = true;
            framer_.finish();
            decoder_.finish();
            output_.end();
        }
        if (audio_ended || buffering_.holds(SMGR_TDEMUX_DATA_TYPE_AUDIO)) return;
        audio_ended = true;
        for (const auto& pair : audio_)
            if (pair) pair->finish(buffering_.stc());
    };
    const auto go_on = [&]
    {
        run_to(next_step(clock_.now()));
        look();
    };
    for (end_streams(); !buffering_.empty(); end_streams()) go_on();
    const auto waiting = [this]
    {
        return !output_.empty() || !metadata_.empty() ||
               std::ranges::any_of(audio_, [](const auto& pair) { return pair && !pair->output().empty(); });
    };
    while (waiting()) go_on();
}

void Chain::sum_up_audio()
{
    auto& audio = records_.audio;
    audio.nReceivedFrames = audio.nDecodedFrames = audio.nOutputFrames = audio.nSkippedFrames = audio.nOutputErrors = 0;
    audio.nErrors = audio.nTSDiscontinuity = audio.nCurDecodedQueueLength = 0;
    for (const SMGR_AUDIO_PAIR_STATS& pair : audio.PairStats)
    {
        audio.nReceivedFrames += pair.nReceivedFrames;
        audio.tLastReceivedFrame = std::max(audio.tLastReceivedFrame, pair.tLastReceivedFrame);
        audio.nDecodedFrames += pair.nDecodedFrames;
        audio.tLastDecodedFrame = std::max(audio.tLastDecodedFrame, pair.tLastDecodedFrame);
        audio.nOutputFrames += pair.nOutputFrames;
        audio.tLastOutputFrame = std::max(audio.tLastOutputFrame, pair.tLastOutputFrame);
        audio.nSkippedFrames += pair.nSkippedFrames;
        audio.tLastSkippedFrame = std::max(audio.tLastSkippedFrame, pair.tLastSkippedFrame);
        audio.nErrors += pair.nDecoderErrors;
        audio.nTSDiscontinuity += pair.nTSDiscontinuity + pair.nInTSDiscontinuity;
        audio.nCurDecodedQueueLength += pair.nOutQueueLength;
    }
    audio.nReleasedFrames = audio.nReceivedFrames;
    audio.tLastReleasedFrame = audio.tLastReceivedFrame;
}

/** Brings up to date what the input tells, which stands still when the input has ended. */
void Chain::update_input()
{
    if (ended_) return;
    reception_.update(demux_.packets());
    demux_.update();
    recovery_.update();
    buffering_.update();
    framer_.update();
    decoder_.update();
}

const records::Records& Chain::records()
{
    update_input();
    sum_up_audio();
    return records_;
}

} // namespace softdec
