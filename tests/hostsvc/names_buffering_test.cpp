// The texts of the buffering controller's enumerations.
#include "hostsvc.h"
#include "service_text.h"

TEST(BufferingMode, EveryModeHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_DECSDI_BUFFERING_ADAPTIVE,     "Adaptive"    },
        {SMGR_DECSDI_BUFFERING_FIXED,        "Fixed"       },
        {SMGR_DECSDI_BUFFERING_AUTOMATIC,    "Automatic"   },
        {SMGR_DECSDI_BUFFERING_MULTISYNC,    "MultiSync"   },
        {SMGR_DECSDI_BUFFERING_MINIMUM,      "Minimum"     },
        {SMGR_DECSDI_BUFFERING_STANDARD_HRD, "Standard HRD"},
        {SMGR_DECSDI_BUFFERING_LOWLATENCY,   "Low latency" },
    };
    ExpectNames(SessMgr_GetCBufferingModeString, -10, 20, NAMES);
}

TEST(BufferingMode, BoundsOfTheRangeAreNoModes)
{
    EXPECT_EQ(Text(SessMgr_GetCBufferingModeString, static_cast<int>(SMGR_DECSDI_BUFFERING_MIN)), "Unknown (0)");
    EXPECT_EQ(Text(SessMgr_GetCBufferingModeString, static_cast<int>(SMGR_DECSDI_BUFFERING_MAX)), "Unknown (8)");
    EXPECT_EQ(Text(SessMgr_GetCBufferingModeString, 9), "Unknown (9)");
}

TEST(BufferingStatus, EveryStatusHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID,     "MultiSync error: invalid timecode"},
        {SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT, "MultiSync error: no timecode"     },
        {SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_NO_NTP_CLIENT,        "MultiSync error: no NTP client"   },
        {SMGR_CBUFFERING_STATUS_IDLE,                                 "Idle"                             },
        {SMGR_CBUFFERING_STATUS_ACTIVE,                               "Active"                           },
    };
    ExpectNames(SessMgr_GetCBufferingStatusString, -10, 10, NAMES);
}
