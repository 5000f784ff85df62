/**
 * @file names_buffering.cpp
 * Names of the buffering controller.
 */
#include "hostsvc.h"
#include "names.h"

using namespace hostsvc;

char* SessMgr_GetCBufferingModeString(int enMode, char* szBuffer, size_t nSize)
{
    // SMGR_DECSDI_BUFFERING_MIN and SMGR_DECSDI_BUFFERING_MAX bound the range. No controller runs in them: unknown.
    static constexpr Name MODES[] = {
        {SMGR_DECSDI_BUFFERING_ADAPTIVE,     "Adaptive"    },
        {SMGR_DECSDI_BUFFERING_FIXED,        "Fixed"       },
        {SMGR_DECSDI_BUFFERING_AUTOMATIC,    "Automatic"   },
        {SMGR_DECSDI_BUFFERING_MULTISYNC,    "MultiSync"   },
        {SMGR_DECSDI_BUFFERING_MINIMUM,      "Minimum"     },
        {SMGR_DECSDI_BUFFERING_STANDARD_HRD, "Standard HRD"},
        {SMGR_DECSDI_BUFFERING_LOWLATENCY,   "Low latency" },
    };
    return NameText(MODES, enMode, szBuffer, nSize);
}

char* SessMgr_GetCBufferingStatusString(int enStatus, char* szBuffer, size_t nSize)
{
    static constexpr Name STATUSES[] = {
        {SMGR_CBUFFERING_STATUS_IDLE,                                 "Idle"                             },
        {SMGR_CBUFFERING_STATUS_ACTIVE,                               "Active"                           },
        {SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_NO_NTP_CLIENT,        "MultiSync error: no NTP client"   },
        {SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT, "MultiSync error: no timecode"     },
        {SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID,     "MultiSync error: invalid timecode"},
    };
    return NameText(STATUSES, enStatus, szBuffer, nSize);
}
