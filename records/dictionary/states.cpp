// The enumerations of the records and the code points of ITU-T H.273.

#include "states.h"

#include <sys/socket.h>

#include "sessmgr_audio.h"
#include "sessmgr_types.h"

namespace dictionary::states
{

namespace
{

#define STATE(enumerator, identifier)                                  \
    {                                                                  \
        static_cast<std::int64_t>(enumerator), identifier, #enumerator \
    }

constexpr State tdemux_state_values[] = {
    STATE(SMGR_TDEMUX_STATS_STATE_UNKNOWN, "unknown"),     STATE(SMGR_TDEMUX_STATS_STATE_STOPPED, "stopped"),
    STATE(SMGR_TDEMUX_STATS_STATE_LISTENING, "listening"), STATE(SMGR_TDEMUX_STATS_STATE_ACTIVE, "active"),
    STATE(SMGR_TDEMUX_STATS_STATE_RESOLVING, "resolving"), STATE(SMGR_TDEMUX_STATS_STATE_CONNECTING, "connecting"),
    STATE(SMGR_TDEMUX_STATS_STATE_SCRAMBLED, "scrambled"), STATE(SMGR_TDEMUX_STATS_STATE_SECURING, "securing"),
    STATE(SMGR_TDEMUX_STATS_STATE_INVALID, "invalid"),     STATE(SMGR_TDEMUX_STATS_STATE_FAILED, "failed"),
};

constexpr State encapsulation_values[] = {
    STATE(SMGR_STREAM_ENCAPSULATION_TS_RTP, "ts_rtp"),
    STATE(SMGR_STREAM_ENCAPSULATION_TS_SRT, "ts_srt"),
};

constexpr State fec_type_values[] = {
    STATE(SMGR_FEC_TYPE_NONE, "none"),
    STATE(SMGR_FEC_TYPE_VF, "vf"),
    STATE(SMGR_FEC_TYPE_PRO_MPEG, "pro_mpeg"),
};

constexpr State address_family_values[] = {
    STATE(AF_UNSPEC, "none"),
    STATE(AF_INET, "ipv4"),
    STATE(AF_INET6, "ipv6"),
};

constexpr State data_type_values[] = {
    STATE(SMGR_TDEMUX_DATA_TYPE_UNKNOWN, "unknown"),
    STATE(SMGR_TDEMUX_DATA_TYPE_VIDEO, "video"),
    STATE(SMGR_TDEMUX_DATA_TYPE_AUDIO, "audio"),
    STATE(SMGR_TDEMUX_DATA_TYPE_KLV, "klv"),
};

constexpr State compression_values[] = {
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN, "unknown"),   STATE(SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED, "uncompressed"),
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_H264, "h264"),         STATE(SMGR_TDEMUX_COMPRESSION_TYPE_H265, "h265"),
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1, "mpeg1"),       STATE(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2, "mpeg2"),
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4, "mpeg4"),       STATE(SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS, "aac_adts"),
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM, "aac_latm"), STATE(SMGR_TDEMUX_COMPRESSION_TYPE_AC3, "ac3"),
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_MP1, "mp1"),           STATE(SMGR_TDEMUX_COMPRESSION_TYPE_MP2, "mp2"),
    STATE(SMGR_TDEMUX_COMPRESSION_TYPE_MP3, "mp3"),
};

constexpr State srt_key_state_values[] = {
    STATE(SMGR_STREAM_SRT_KM_S_UNSECURED, "unsecured"),  STATE(SMGR_STREAM_SRT_KM_S_SECURING, "securing"),
    STATE(SMGR_STREAM_SRT_KM_S_SECURED, "secured"),      STATE(SMGR_STREAM_SRT_KM_S_NOSECRET, "no_secret"),
    STATE(SMGR_STREAM_SRT_KM_S_BADSECRET, "bad_secret"),
};

constexpr State vframer_state_values[] = {
    STATE(SMGR_VFRAMER_STATE_UNKNOWN, "unknown"),         STATE(SMGR_VFRAMER_STATE_IDLE, "idle"),
    STATE(SMGR_VFRAMER_STATE_ACTIVE, "active"),           STATE(SMGR_VFRAMER_STATE_INVALID, "invalid"),
    STATE(SMGR_VFRAMER_STATE_UNSUPPORTED, "unsupported"),
};

constexpr State vdecoder_state_values[] = {
    STATE(SMGR_VCUDEC_STATE_UNKNOWN, "unknown"), STATE(SMGR_VCUDEC_STATE_IDLE, "idle"),
    STATE(SMGR_VCUDEC_STATE_ACTIVE, "active"),   STATE(SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY, "idle_lack_of_memory"),
    STATE(SMGR_VCUDEC_STATE_STOP, "stopped"),    STATE(SMGR_VCUDEC_STATE_INVALID, "invalid"),
};

constexpr State picture_structure_values[] = {
    STATE(VCUDEC_PICSTRUCTURE_UNKNOWN, "unknown"),
    STATE(VCUDEC_PICSTRUCTURE_FRAME, "frame"),
    STATE(VCUDEC_PICSTRUCTURE_TOP_FIELD, "top_field"),
    STATE(VCUDEC_PICSTRUCTURE_BOTTOM_FIELD, "bottom_field"),
    STATE(VCUDEC_PICSTRUCTURE_TOP_BOT, "top_bottom"),
    STATE(VCUDEC_PICSTRUCTURE_BOT_TOP, "bottom_top"),
    STATE(VCUDEC_PICSTRUCTURE_TOP_BOT_TOP, "top_bottom_top"),
    STATE(VCUDEC_PICSTRUCTURE_BOT_TOP_BOT, "bottom_top_bottom"),
    STATE(VCUDEC_PICSTRUCTURE_FRAME_X2, "frame_doubling"),
    STATE(VCUDEC_PICSTRUCTURE_FRAME_X3, "frame_tripling"),
    STATE(VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_PREV_BOT, "top_field_with_previous_bottom"),
    STATE(VCUDEC_PICSTRUCTURE_BOT_FLD_WITH_PREV_TOP, "bottom_field_with_previous_top"),
    STATE(VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_NEXT_BOT, "top_field_with_next_bottom"),
    STATE(VCUDEC_PICSTRUCTURE_BOT_FLD_WITH_NEXT_TOP, "bottom_field_with_next_top"),
};

constexpr State still_image_type_values[] = {
    {0, "none", ""},
};

constexpr State codec_unit_error_values[] = {
    {0, "none", ""},
};

constexpr State audio_state_values[] = {
    STATE(SMGR_AUDDEC_STATE_UNKNOWN, "unknown"),
    STATE(SMGR_AUDDEC_STATE_IDLE, "idle"),
    STATE(SMGR_AUDDEC_STATE_ACTIVE, "active"),
    STATE(SMGR_AUDDEC_STATE_INVALID, "invalid"),
};

constexpr State audio_pair_error_values[] = {
    {0, "none", ""},
};

constexpr State metadata_state_values[] = {
    STATE(SMGR_METADATA_STATE_UNKNOWN, "unknown"),
    STATE(SMGR_METADATA_STATE_IDLE, "idle"),
    STATE(SMGR_METADATA_STATE_ACTIVE, "active"),
    STATE(SMGR_METADATA_STATE_INVALID, "invalid"),
};

constexpr State metadata_channel_type_values[] = {
    STATE(SMGR_METADATA_CHANNEL_TYPE_KLV, "klv"),
    STATE(SMGR_METADATA_CHANNEL_TYPE_TC, "timecode"),
    STATE(SMGR_METADATA_CHANNEL_TYPE_CC, "closed_captions"),
    STATE(SMGR_METADATA_CHANNEL_TYPE_AFD, "afd"),
    STATE(SMGR_METADATA_CHANNEL_TYPE_UNKNOWN, "unknown"),
};

constexpr State buffering_state_values[] = {
    STATE(SMGR_CBUFFERING_STATUS_IDLE, "idle"),
    STATE(SMGR_CBUFFERING_STATUS_ACTIVE, "active"),
    STATE(SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_NO_NTP_CLIENT, "multisync_no_ntp_client"),
    STATE(SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT, "multisync_no_timecode"),
    STATE(SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID, "multisync_invalid_timecode"),
};

constexpr State buffering_mode_values[] = {
    STATE(SMGR_DECSDI_BUFFERING_ADAPTIVE, "adaptive"),      STATE(SMGR_DECSDI_BUFFERING_FIXED, "fixed"),
    STATE(SMGR_DECSDI_BUFFERING_AUTOMATIC, "automatic"),    STATE(SMGR_DECSDI_BUFFERING_MULTISYNC, "multisync"),
    STATE(SMGR_DECSDI_BUFFERING_MINIMUM, "minimum"),        STATE(SMGR_DECSDI_BUFFERING_STANDARD_HRD, "standard_hrd"),
    STATE(SMGR_DECSDI_BUFFERING_LOWLATENCY, "low_latency"),
};

constexpr State tracking_mode_values[] = {
    STATE(SMGR_CLOCK_TRACKING_DISABLED, "disabled"),
    STATE(SMGR_CLOCK_TRACKING_ENABLED, "enabled"),
    STATE(SMGR_CLOCK_TRACKING_DISABLED_LOCK, "disabled_with_lock"),
    STATE(SMGR_CLOCK_TRACKING_ENABLED_LOCK, "enabled_with_lock"),
};

constexpr State chroma_format_values[] = {
    STATE(SMGR_VIDEO_COLOR_TYPE_UNKNOWN, "unknown"),
    STATE(SMGR_VIDEO_COLOR_TYPE_420_8BIT, "420_8bit"),
    STATE(SMGR_VIDEO_COLOR_TYPE_420_10BIT, "420_10bit"),
    STATE(SMGR_VIDEO_COLOR_TYPE_422_8BIT, "422_8bit"),
    STATE(SMGR_VIDEO_COLOR_TYPE_422_10BIT, "422_10bit"),
    STATE(SMGR_VIDEO_COLOR_TYPE_MONOCHROME, "monochrome"),
    STATE(SMGR_VIDEO_COLOR_TYPE_444, "444"),
};

constexpr State dynamic_range_values[] = {
    STATE(SMGR_VFRAMER_HDR_TYPE_INVALID, "invalid"), STATE(SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED, "unspecified"),
    STATE(SMGR_VFRAMER_HDR_TYPE_SDR, "sdr"),         STATE(SMGR_VFRAMER_HDR_TYPE_HLG, "hlg"),
    STATE(SMGR_VFRAMER_HDR_TYPE_PQ, "pq"),           STATE(SMGR_VFRAMER_HDR_TYPE_CUSTOM, "custom"),
};

constexpr State colour_primaries_values[] = {
    {1, "bt709", ""}, {2, "unspecified", ""}, {4, "bt470_m", ""}, {5, "bt470_bg", ""}, {6, "smpte170", ""},    {7, "smpte240", ""},
    {8, "film", ""},  {9, "bt2020", ""},      {10, "xyz", ""},    {11, "dci_p3", ""},  {12, "display_p3", ""}, {22, "ebu3213", ""},
};

constexpr State transfer_characteristics_values[] = {
    {1, "bt709", ""},     {2, "unspecified", ""}, {4, "gamma_2_2", ""},     {5, "gamma_2_8", ""},     {6, "smpte170", ""},
    {7, "smpte240", ""},  {8, "linear", ""},      {9, "log_100", ""},       {10, "log_316", ""},      {11, "xvycc", ""},
    {12, "bt1361", ""},   {13, "srgb", ""},       {14, "bt2020_10bit", ""}, {15, "bt2020_12bit", ""}, {16, "pq", ""},
    {17, "smpte428", ""}, {18, "hlg", ""},
};

constexpr State matrix_coefficients_values[] = {
    {0, "identity", ""},         {1, "bt709", ""},      {2, "unspecified", ""}, {4, "fcc", ""},
    {5, "bt470_bg", ""},         {6, "smpte170", ""},   {7, "smpte240", ""},    {8, "ycgco", ""},
    {9, "bt2020_ncl", ""},       {10, "bt2020_cl", ""}, {11, "smpte2085", ""},  {12, "chromaticity_ncl", ""},
    {13, "chromaticity_cl", ""}, {14, "ictcp", ""},     {15, "ipt_pq_c2", ""},  {16, "ycgco_re", ""},
    {17, "ycgco_ro", ""},
};

#undef STATE

} // namespace

constinit const States tdemux_state = {"SMGR_TDEMUX_STATS_STATE", tdemux_state_values};
constinit const States encapsulation = {"SMGR_STREAM_ENCAPSULATION", encapsulation_values};
constinit const States fec_type = {"SMGR_FEC_TYPE", fec_type_values};
constinit const States address_family = {"address family", address_family_values};
constinit const States data_type = {"SMGR_TDEMUX_DATA_TYPE", data_type_values};
constinit const States compression = {"SMGR_TDEMUX_COMPRESSION_TYPE", compression_values};
constinit const States srt_key_state = {"SMGR_STREAM_SRT_KM_S", srt_key_state_values};
constinit const States vframer_state = {"SMGR_VFRAMER_STATE", vframer_state_values};
constinit const States vdecoder_state = {"SMGR_VCUDEC_STATE", vdecoder_state_values};
constinit const States picture_structure = {"SMGR_VCUDEC_PICSTRUCTURE", picture_structure_values};
constinit const States still_image_type = {"still image type", still_image_type_values};
constinit const States codec_unit_error = {"codec unit error", codec_unit_error_values};
constinit const States audio_state = {"SMGR_AUDDEC_STATE", audio_state_values};
constinit const States audio_pair_error = {"audio pair error", audio_pair_error_values};
constinit const States metadata_state = {"SMGR_METADATA_STATE", metadata_state_values};
constinit const States metadata_channel_type = {"SMGR_METADATA_CHANNEL_TYPE", metadata_channel_type_values};
constinit const States buffering_state = {"SMGR_CBUFFERING_STATUS", buffering_state_values};
constinit const States buffering_mode = {"SMGR_DECSDI_BUFFERING", buffering_mode_values};
constinit const States tracking_mode = {"SMGR_CLOCK_TRACKING", tracking_mode_values};
constinit const States chroma_format = {"SMGR_VIDEO_COLOR_TYPE", chroma_format_values};
constinit const States dynamic_range = {"SMGR_VFRAMER_HDR_TYPE", dynamic_range_values};
constinit const States colour_primaries = {"ColourPrimaries", colour_primaries_values};
constinit const States transfer_characteristics = {"TransferCharacteristics", transfer_characteristics_values};
constinit const States matrix_coefficients = {"MatrixCoefficients", matrix_coefficients_values};

} // namespace dictionary::states
