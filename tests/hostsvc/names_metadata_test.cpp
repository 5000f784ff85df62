// The texts of the metadata decoder's enumerations.
#include "hostsvc.h"
#include "service_text.h"

TEST(MetadataState, EveryStateHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_METADATA_STATE_INVALID, "Invalid"},
        {SMGR_METADATA_STATE_UNKNOWN, "Unknown"},
        {SMGR_METADATA_STATE_IDLE,    "Idle"   },
        {SMGR_METADATA_STATE_ACTIVE,  "Active" },
    };
    ExpectNames(SessMgr_GetMetadataStateString, -10, 10, NAMES);
}
