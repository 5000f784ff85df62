/**
 * @file hostsvc.h
 * The services that a host process supplies to the report library by name: texts of numbers, rates, durations and names.
 * Both sides include this one declaration. Plain C11 that is also C++17 and later.
 *
 * A host process links libhostsvc or defines these functions itself. One that loads libstats.so with dlopen also exports them
 * (link with -rdynamic), so that the dynamic linker finds them there.
 *
 * The contract, the same for every service whose description says nothing else:
 *
 * - szBuffer is the caller's, not NULL unless nSize is 0, and is returned. The caller prints the returned pointer.
 * - At most nSize characters are written, the terminating NUL included: a longer text is cut. With nSize 1 the text is
 *   empty; with nSize 0 nothing is written.
 * - Every value has a text, never an empty one. libhostsvc names a value that is in no table "Unknown (<number>)".
 * - Services do not fail, keep no state, allocate nothing and may be called from any number of threads at once.
 *
 * The texts of libhostsvc are ASCII and stable, and do not depend on the locale. Only PrintToString has the locale's decimal
 * point, as snprintf does: a host process that prints reports keeps LC_NUMERIC at "C".
 */
#ifndef HOSTSVC_H
#define HOSTSVC_H

#include <stddef.h>

#include "sessmgr_types.h"

#if defined(__GNUC__)
#define HOSTSVC_PRINTF(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#define HOSTSVC_API                                __attribute__((visibility("default")))
#else
#define HOSTSVC_PRINTF(formatIndex, firstArgument)
#define HOSTSVC_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Numbers, rates and durations ---- */

/**
 * Writes all digits of an unsigned number: 0, 18446744073709551615.
 * @param nValue count, size or any other unsigned number
 */
HOSTSVC_API char* FormatULONG(unsigned long nValue, char* szBuffer, size_t nSize);

/**
 * Writes all digits of a signed number: -5, 9223372036854775807.
 * @param nValue signed number
 */
HOSTSVC_API char* FormatLONGLONG(long long nValue, char* szBuffer, size_t nSize);

/**
 * Writes a bit rate in decimal units: 950 bps, 64.00 kbps, 12.50 Mbps, 1.20 Gbps.
 * @param nBitsPerSecond rate [bit/s]. Reports widen a 32-bit field through unsigned int, so -1 arrives as 4294967295, and pass
 *                       the kbit/s of an audio pair as they are.
 */
HOSTSVC_API char* FormatBitRate(unsigned long nBitsPerSecond, char* szBuffer, size_t nSize);

/**
 * Writes a duration with its sign: 850us, 12.345ms, and from one second on 1.234s. Digits beyond the third decimal are dropped.
 * @param nMicroSeconds duration [us]
 */
HOSTSVC_API char* FormatMicroSeconds(long long nMicroSeconds, char* szBuffer, size_t nSize);

/**
 * Writes a duration with its sign: 120ms, 1.500s, and from one minute on as FormatUpTime does.
 * @param nMilliSeconds duration [ms]
 */
HOSTSVC_API char* FormatMilliSeconds(long long nMilliSeconds, char* szBuffer, size_t nSize);

/**
 * Writes a time span with its sign: 45s, 3m 07s, 2h 03m 07s, 5d 02h 03m 07s.
 * @param nSeconds time span [s]
 */
HOSTSVC_API char* FormatUpTime(long long nSeconds, char* szBuffer, size_t nSize);

/**
 * Prints as snprintf does.
 * @param pFormat printf format
 * @return length of the text now in szBuffer [characters], NUL not counted; 0 with nSize 0 or if the format is in error
 */
HOSTSVC_API int PrintToString(char* szBuffer, size_t nSize, const char* pFormat, ...) HOSTSVC_PRINTF(3, 4);

/**
 * Appends pText to the NUL-terminated text in szBuffer. A full buffer, or one without a NUL, stays as it is.
 * @param pText text, not NULL
 * @param nSize size of szBuffer [characters], what it already holds included
 */
HOSTSVC_API char* StringCat(char* szBuffer, const char* pText, size_t nSize);

/* ---- Results ---- */

/**
 * Writes a sentence that explains a result code.
 * @param nErrorCode SMGR_ code of sessmgr_const.h, kept in an int: a warning is negative. An unknown code of a flagged
 *                   range reads "Unknown (<number>, 0x<hexadecimal>)".
 */
HOSTSVC_API char* SessMgr_GetErrorString(int nErrorCode, char* szBuffer, size_t nSize);

/**
 * Writes the text of an error code of the hardware video decoder.
 * @param nErrorCode code of the codec unit; 0 = none, the only one that libhostsvc names
 */
HOSTSVC_API char* SessMgr_GetVCUDecoderErrorString(int nErrorCode, char* szBuffer, size_t nSize);

/* ---- Transport ---- */

/** Writes the name of a transport demux state. @param enState SMGR_TDEMUX_STATS_STATE */
HOSTSVC_API char* SessMgr_GetTDemuxStateString(int enState, char* szBuffer, size_t nSize);

/** Writes the name of a kind of elementary stream. @param enType SMGR_TDEMUX_DATA_TYPE */
HOSTSVC_API char* SessMgr_GetTDemuxDataTypeString(int enType, char* szBuffer, size_t nSize);

/** Writes the name of a coding. @param enType SMGR_TDEMUX_COMPRESSION_TYPE */
HOSTSVC_API char* SessMgr_GetTDemuxCompressionTypeString(int enType, char* szBuffer, size_t nSize);

/** Writes the name of a stream encapsulation. @param enEncapsulation code, such as SMGR_STREAM_ENCAPSULATION_TS_SRT */
HOSTSVC_API char* SessMgr_GetStreamEncapsulationString(int enEncapsulation, char* szBuffer, size_t nSize);

/**
 * Writes an address: 192.0.2.10, 2001:db8::1 (RFC 5952), or with a host name "encoder.example (192.0.2.10)". A record
 * without an address reads 0.0.0.0. A byte of a host name that is not printable ASCII reads '?'.
 * @param pAddress address record, not NULL; only read
 */
HOSTSVC_API char* SessMgr_GetIPAddressString(const SMGR_IP_ADDRESS* pAddress, char* szBuffer, size_t nSize);

/** Writes an SRT version: 1.4.4. @param nVersion 0xMMmmpp, major, minor and patch number; 0 = "Unknown" */
HOSTSVC_API char* SessMgr_GetSRTVersionString(int nVersion, char* szBuffer, size_t nSize);

/* ---- Video ---- */

/** Writes the name of a video framer state. @param enState SMGR_VFRAMER_STATE */
HOSTSVC_API char* SessMgr_GetVFramerStateString(int enState, char* szBuffer, size_t nSize);

/** Writes a chroma format and bit depth. @param enType SMGR_VIDEO_COLOR_TYPE */
HOSTSVC_API char* SessMgr_GetVideoColorTypeString(int enType, char* szBuffer, size_t nSize);

/**
 * Writes the name of a video profile.
 * @param nProfile      profile_idc of ITU-T H.264, general_profile_idc of ITU-T H.265, the profile identification of
 *                      ISO/IEC 13818-2 or the upper half of profile_and_level_indication of ISO/IEC 14496-2
 * @param enCompression SMGR_TDEMUX_COMPRESSION_TYPE, which decides how nProfile is read
 */
HOSTSVC_API char* SessMgr_GetVideoProfileString(int nProfile, int enCompression, char* szBuffer, size_t nSize);

/**
 * Writes the name of a video level.
 * @param nLevel        level_idc of ITU-T H.264 (9 is level 1b), general_level_idc of ITU-T H.265, the level
 *                      identification of ISO/IEC 13818-2 or the lower half of profile_and_level_indication of
 *                      ISO/IEC 14496-2
 * @param enCompression SMGR_TDEMUX_COMPRESSION_TYPE, which decides how nLevel is read
 */
HOSTSVC_API char* SessMgr_GetVideoLevelString(int nLevel, int enCompression, char* szBuffer, size_t nSize);

/** Writes the name of a dynamic range. @param enType SMGR_VFRAMER_HDR_TYPE */
HOSTSVC_API char* SessMgr_GetVideoHDRTypeString(int enType, char* szBuffer, size_t nSize);

/** Writes the name of ColourPrimaries of ITU-T H.273. @param nCodePoint 0 to 255; 2 = unspecified */
HOSTSVC_API char* SessMgr_GetVideoColourPrimariesString(unsigned int nCodePoint, char* szBuffer, size_t nSize);

/** Writes the name of TransferCharacteristics of ITU-T H.273. @param nCodePoint 0 to 255; 2 = unspecified */
HOSTSVC_API char* SessMgr_GetVideoTransferCharacteristicsString(unsigned int nCodePoint, char* szBuffer, size_t nSize);

/** Writes the name of MatrixCoefficients of ITU-T H.273. @param nCodePoint 0 to 255; 2 = unspecified */
HOSTSVC_API char* SessMgr_GetVideoMatrixCoefficientsString(unsigned int nCodePoint, char* szBuffer, size_t nSize);

/** Writes the name of a hardware video decoder state. @param enState SMGR_VCUDEC_STATE */
HOSTSVC_API char* SessMgr_GetVCUDecoderStateString(int enState, char* szBuffer, size_t nSize);

/** Writes the name of a picture structure. @param enPicStructure SMGR_VCUDEC_PICSTRUCTURE */
HOSTSVC_API char* SessMgr_GetVCUDecoderPicStructureString(int enPicStructure, char* szBuffer, size_t nSize);

/** Writes the name of a kind of still image. @param enType kind; 0 = none, the only one that libhostsvc names */
HOSTSVC_API char* SessMgr_GetDecoderSdiStillImageString(int enType, char* szBuffer, size_t nSize);

/* ---- Audio, metadata and buffering ---- */

/** Writes the name of an audio decoder state. @param enState SMGR_AUDDEC_STATE */
HOSTSVC_API char* SessMgr_GetAudioDecoderStateString(int enState, char* szBuffer, size_t nSize);

/** Writes the name of a metadata state. @param enState SMGR_METADATA_STATE */
HOSTSVC_API char* SessMgr_GetMetadataStateString(int enState, char* szBuffer, size_t nSize);

/** Writes the name of a buffering mode. @param enMode SMGR_DECSDI_BUFFERING_ value */
HOSTSVC_API char* SessMgr_GetCBufferingModeString(int enMode, char* szBuffer, size_t nSize);

/** Writes the name of a buffering state. @param enStatus SMGR_CBUFFERING_STATUS */
HOSTSVC_API char* SessMgr_GetCBufferingStatusString(int enStatus, char* szBuffer, size_t nSize);

#ifdef __cplusplus
}
#endif

#endif
