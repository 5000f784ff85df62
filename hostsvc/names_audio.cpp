/**
 * @file names_audio.cpp
 * Names of the audio decoder.
 */
#include "hostsvc.h"
#include "names.h"
#include "sessmgr_audio.h"

using namespace hostsvc;

char* SessMgr_GetAudioDecoderStateString(int enState, char* szBuffer, size_t nSize)
{
    static constexpr Name STATES[] = {
        {SMGR_AUDDEC_STATE_UNKNOWN, "Unknown"},
        {SMGR_AUDDEC_STATE_IDLE,    "Idle"   },
        {SMGR_AUDDEC_STATE_ACTIVE,  "Active" },
        {SMGR_AUDDEC_STATE_INVALID, "Invalid"},
    };
    return NameText(STATES, enState, szBuffer, nSize);
}
