#include "demux/program_tables.h"

#include <algorithm>
#include <array>
#include <bitstream/mpeg/ts.h>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>

extern "C" {
#include <dvbpsi/descriptor.h>
#include <dvbpsi/dvbpsi.h>
#include <dvbpsi/pat.h>
#include <dvbpsi/pmt.h>
#include <dvbpsi/psi.h>
}

#include "sessmgr_audio.h"

namespace softdec
{

namespace
{

/** Stream types of ISO/IEC 13818-1, table 2-34, and of ATSC A/53 part 3. */
enum StreamType : unsigned
{
    video_mpeg1 = 0x01,
    video_mpeg2 = 0x02,
    audio_mpeg1 = 0x03,
    audio_mpeg2 = 0x04,
    private_pes = 0x06,
    audio_adts = 0x0f,
    video_mpeg4 = 0x10,
    audio_latm = 0x11,
    metadata_pes = 0x15,
    video_h264 = 0x1b,
    video_h265 = 0x24,
    audio_ac3 = 0x81,
};

constexpr unsigned registration_descriptor = 0x05;
constexpr unsigned ac3_descriptor = 0x6a; // ETSI EN 300 468, annex D

dvbpsi_t* new_decoder()
{
    dvbpsi_t* const decoder = dvbpsi_new([](dvbpsi_t*, dvbpsi_msg_level_t, const char*) {}, DVBPSI_MSG_NONE);
    if (decoder == nullptr) throw std::bad_alloc();
    return decoder;
}

const dvbpsi_descriptor_t* find_descriptor(const dvbpsi_pmt_es_t& stream, unsigned tag)
{
    const dvbpsi_descriptor_t* descriptor = stream.p_first_descriptor;
    while (descriptor != nullptr && descriptor->i_tag != tag) descriptor = descriptor->p_next;
    return descriptor;
}

bool is_registered(const dvbpsi_pmt_es_t& stream, std::string_view identifier)
{
    const dvbpsi_descriptor_t* const descriptor = find_descriptor(stream, registration_descriptor);
    return descriptor != nullptr && descriptor->i_length >= identifier.size() &&
           std::memcmp(descriptor->p_data, identifier.data(), identifier.size()) == 0;
}

/** What an entry of the map is; nothing = of no kind that is decoded. */
std::optional<ElementaryStream> stream_of(const dvbpsi_pmt_es_t& entry)
{
    const auto stream = [&entry](SMGR_TDEMUX_DATA_TYPE type, SMGR_TDEMUX_COMPRESSION_TYPE compression)
    { return ElementaryStream{.pid = entry.i_pid, .type = type, .compression = compression}; };

    switch (entry.i_type)
    {
    case video_mpeg1: return stream(SMGR_TDEMUX_DATA_TYPE_VIDEO, SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1);
    case video_mpeg2: return stream(SMGR_TDEMUX_DATA_TYPE_VIDEO, SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2);
    case video_mpeg4: return stream(SMGR_TDEMUX_DATA_TYPE_VIDEO, SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4);
    case video_h264: return stream(SMGR_TDEMUX_DATA_TYPE_VIDEO, SMGR_TDEMUX_COMPRESSION_TYPE_H264);
    case video_h265: return stream(SMGR_TDEMUX_DATA_TYPE_VIDEO, SMGR_TDEMUX_COMPRESSION_TYPE_H265);
    // The layer stands in the frames; until one has come, the usual one is taken.
    case audio_mpeg1:
    case audio_mpeg2: return stream(SMGR_TDEMUX_DATA_TYPE_AUDIO, SMGR_TDEMUX_COMPRESSION_TYPE_MP2);
    case audio_adts: return stream(SMGR_TDEMUX_DATA_TYPE_AUDIO, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS);
    case audio_latm: return stream(SMGR_TDEMUX_DATA_TYPE_AUDIO, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM);
    case audio_ac3: return stream(SMGR_TDEMUX_DATA_TYPE_AUDIO, SMGR_TDEMUX_COMPRESSION_TYPE_AC3);
    case private_pes:
        if (is_registered(entry, "KLVA")) return stream(SMGR_TDEMUX_DATA_TYPE_KLV, SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED);
        if (is_registered(entry, "HEVC")) return stream(SMGR_TDEMUX_DATA_TYPE_VIDEO, SMGR_TDEMUX_COMPRESSION_TYPE_H265);
        if (is_registered(entry, "BSSD")) // SMPTE ST 302
            return stream(SMGR_TDEMUX_DATA_TYPE_AUDIO, SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED);
        if (is_registered(entry, "AC-3") || find_descriptor(entry, ac3_descriptor) != nullptr)
            return stream(SMGR_TDEMUX_DATA_TYPE_AUDIO, SMGR_TDEMUX_COMPRESSION_TYPE_AC3);
        return std::nullopt;
    case metadata_pes:
    {
        auto klv = stream(SMGR_TDEMUX_DATA_TYPE_KLV, SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED);
        klv.synchronous_metadata = true;
        return klv;
    }
    default: return std::nullopt;
    }
}

} // namespace

void ProgramTables::DeletePat::operator()(dvbpsi_s* decoder) const
{
    if (dvbpsi_decoder_present(decoder)) dvbpsi_pat_detach(decoder);
    dvbpsi_delete(decoder);
}

void ProgramTables::DeletePmt::operator()(dvbpsi_s* decoder) const
{
    if (dvbpsi_decoder_present(decoder)) dvbpsi_pmt_detach(decoder);
    dvbpsi_delete(decoder);
}

ProgramTables::ProgramTables(std::function<void(const Program&)> changed) : changed_(std::move(changed)), pat_(new_decoder())
{
    const auto take = [](void* self, dvbpsi_pat_t* pat)
    {
        static_cast<ProgramTables*>(self)->take_pat(*pat);
        dvbpsi_pat_delete(pat);
    };
    if (!dvbpsi_pat_attach(pat_.get(), take, this)) throw std::bad_alloc();
}

ProgramTables::~ProgramTables() = default;

void ProgramTables::follow(unsigned program, unsigned pid)
{
    program_ = program;
    pmt_pid_ = pid;
    pmt_.reset(new_decoder());
    const auto take = [](void* self, dvbpsi_pmt_t* pmt)
    {
        static_cast<ProgramTables*>(self)->take_pmt(*pmt);
        dvbpsi_pmt_delete(pmt);
    };
    if (!dvbpsi_pmt_attach(pmt_.get(), static_cast<std::uint16_t>(program), take, this)) throw std::bad_alloc();
}

void ProgramTables::take(std::span<const std::uint8_t, packet_size> packet)
{
    std::array<std::uint8_t, packet_size> copy{};
    std::ranges::copy(packet, copy.begin()); // the library takes no constant data
    // The map's decoder may be exchanged while the other one runs, so which takes the packet is decided first.
    dvbpsi_s* const decoder = ts_get_pid(packet.data()) == 0 ? pat_.get() : pmt_.get();
    if (decoder != nullptr) dvbpsi_packet_push(decoder, copy.data());
}

void ProgramTables::take_pat(const dvbpsi_pat_s& pat)
{
    for (const dvbpsi_pat_program_t* program = pat.p_first_program; program != nullptr; program = program->p_next)
    {
        if (program->i_number == 0) continue; // the network's own table
        if (program->i_number != program_ || program->i_pid != pmt_pid_) follow(program->i_number, program->i_pid);
        return;
    }
}

void ProgramTables::take_pmt(const dvbpsi_pmt_s& pmt)
{
    Program program = {.number = pmt.i_program_number, .pcr_pid = pmt.i_pcr_pid, .filtered = 0, .streams = {}};
    bool has_video = false;
    int pairs = 0;
    for (const dvbpsi_pmt_es_t* entry = pmt.p_first_es; entry != nullptr; entry = entry->p_next)
    {
        auto stream = stream_of(*entry);
        const bool wanted = stream && program.streams.size() < SMGR_TDEMUX_MAX_SOURCES &&
                            !(stream->type == SMGR_TDEMUX_DATA_TYPE_VIDEO && has_video) &&
                            !(stream->type == SMGR_TDEMUX_DATA_TYPE_AUDIO && pairs == SMGR_AUDIO_MAX_PAIRS);
        if (!wanted)
        {
            ++program.filtered;
            continue;
        }
        has_video = has_video || stream->type == SMGR_TDEMUX_DATA_TYPE_VIDEO;
        if (stream->type == SMGR_TDEMUX_DATA_TYPE_AUDIO) stream->audio_pair = ++pairs;
        program.streams.push_back(*stream);
    }
    if (program == current_) return;
    current_ = program;
    changed_(current_);
}

} // namespace softdec
