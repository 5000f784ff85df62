/**
 * @file names_metadata.cpp
 * Names of the metadata decoder.
 */
#include "hostsvc.h"
#include "names.h"

using namespace hostsvc;

char* SessMgr_GetMetadataStateString(int enState, char* szBuffer, size_t nSize)
{
    static constexpr Name STATES[] = {
        {SMGR_METADATA_STATE_UNKNOWN, "Unknown"},
        {SMGR_METADATA_STATE_IDLE,    "Idle"   },
        {SMGR_METADATA_STATE_ACTIVE,  "Active" },
        {SMGR_METADATA_STATE_INVALID, "Invalid"},
    };
    return NameText(STATES, enState, szBuffer, nSize);
}
