// The texts of the audio decoder's enumerations.
#include "hostsvc.h"
#include "service_text.h"
#include "sessmgr_audio.h"

TEST(AudioDecoderState, EveryStateHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_AUDDEC_STATE_INVALID, "Invalid"},
        {SMGR_AUDDEC_STATE_UNKNOWN, "Unknown"},
        {SMGR_AUDDEC_STATE_IDLE,    "Idle"   },
        {SMGR_AUDDEC_STATE_ACTIVE,  "Active" },
    };
    ExpectNames(SessMgr_GetAudioDecoderStateString, -10, 10, NAMES);
}
