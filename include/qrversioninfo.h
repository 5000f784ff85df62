/**
 * @file qrversioninfo.h
 * The version record that a module carries in its initialised data, so that a tool finds it in the module's file, or in a
 * core image, by its signature and reads it without loading the module. Plain C11 that is also C++17 and later.
 */
#ifndef QRVERSIONINFO_H
#define QRVERSIONINFO_H

#include "xtypes.h"

/** The first 16 bytes of a version record. The array of the record has no room for a terminating NUL. */
#define QRVERSIONINFO_SIGNATURE "Q$R$V$B$L$O$B<>."

#pragma pack(push, 1)

/**
 * A version record: 274 bytes, no padding, little-endian. Every text is NUL-terminated and padded with NUL to its width,
 * so the longest text is one character shorter than its array.
 */
typedef struct tagQRVERSIONINFOBLOB
{
    BYTE  abSignature[16];       /**< QRVERSIONINFO_SIGNATURE without its NUL */
    DWORD dwSize;                /**< size of the whole record [bytes]: 274 */
    BYTE  cMajor;                /**< major version */
    BYTE  cMinor;                /**< minor version */
    BYTE  szRevision[12];        /**< source revision; empty = none */
    BYTE  szDescription[64];     /**< what the module is; empty = none */
    BYTE  szCopyright[32];       /**< copyright line; empty = none */
    BYTE  szBuildIdentifier[32]; /**< product, role, version and build number; empty = none */
    BYTE  szBuildDate[16];       /**< build date as the compiler gives it: "Mmm dd yyyy", day padded with a blank */
    BYTE  szBuildTime[16];       /**< build time as the compiler gives it: "hh:mm:ss" */
    BYTE  szNotes[80];           /**< free notes; empty = none */
} QRVERSIONINFOBLOB;

#pragma pack(pop)

XTYPES_ASSERT(sizeof(QRVERSIONINFOBLOB) == 274, "the version record has 274 bytes");

#endif
