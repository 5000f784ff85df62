/**
 * @file metadata_decoder.h
 * Takes KLV packets, timecodes, captions and active formats, puts each out at its time, and keeps the metadata record.
 */
#ifndef SOFTDEC_METADATA_METADATA_DECODER_H
#define SOFTDEC_METADATA_METADATA_DECODER_H

#include <array>
#include <deque>
#include <optional>

#include "demux/elementary_packet.h"
#include "metadata/picture_metadata.h"
#include "sessmgr_types.h"

namespace softdec
{

class MetadataDecoder
{
public:
    MetadataDecoder(const VirtualClock& clock, SMGR_METADATADEC_STATS& record);

    /** Takes a KLV packet. @param synchronous its time stamp stood in the stream @param stc now; nothing = not known */
    void take_klv(const ElementaryPacket& packet, bool synchronous, std::optional<Ticks> stc);

    /** Takes what travels with a picture. @param time_base number of the one that its time stamp is of */
    void take_picture(const PictureMetadata& metadata, std::optional<Ticks> pts, unsigned time_base, std::optional<Ticks> stc);

    /** Puts out what is due. */
    void step(std::optional<Ticks> stc);

    bool empty() const;

private:
    struct Waiting
    {
        Ticks pts = 0;
        unsigned time_base = 0;
        std::size_t bytes = 0;
        Nanoseconds received = 0;
    };

    void take(SMGR_METADATA_CHANNEL_TYPE type, bool synchronous, std::optional<Ticks> pts, std::optional<Ticks> stc, Waiting packet);
    void put_out(std::size_t index, const Waiting& packet);

    const VirtualClock& clock_;
    SMGR_METADATADEC_STATS& record_;
    std::array<std::deque<Waiting>, SMGR_METADATADEC_MAX_CHANNELS> waiting_;
    std::array<std::optional<Waiting>, SMGR_METADATADEC_MAX_CHANNELS> last_output_;
};

} // namespace softdec

#endif
