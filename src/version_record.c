/* The version record of the library. Nothing reads it from within: tools find it by its signature in the library's file. */

#include "qrversioninfo.h"
#include "release.h"

/* C takes a text that fills its array without room for the NUL; only the signature may. */
#define FITS(text, field) XTYPES_ASSERT(sizeof(text) <= sizeof(((QRVERSIONINFOBLOB*)0)->field), text " is too long for " #field)
FITS(RELEASE_REVISION, szRevision);
FITS(RELEASE_DESCRIPTION, szDescription);
FITS(RELEASE_COPYRIGHT, szCopyright);
FITS(RELEASE_BUILD_IDENTIFIER, szBuildIdentifier);
FITS(__DATE__, szBuildDate);
FITS(__TIME__, szBuildTime);

/* "used" keeps it through compiling and LTO, "retain" through --gc-sections. Not const: it stands in initialised data. */
__attribute__((used, retain)) static QRVERSIONINFOBLOB QrVersionBlob = {
    .abSignature = QRVERSIONINFO_SIGNATURE,
    .dwSize = sizeof(QRVERSIONINFOBLOB),
    .cMajor = RELEASE_MAJOR,
    .cMinor = RELEASE_MINOR,
    .szRevision = RELEASE_REVISION,
    .szDescription = RELEASE_DESCRIPTION,
    .szCopyright = RELEASE_COPYRIGHT,
    .szBuildIdentifier = RELEASE_BUILD_IDENTIFIER,
    .szBuildDate = __DATE__,
    .szBuildTime = __TIME__,
    .szNotes = "",
};
