/**
 * @file xtypes.h
 * The basic types of every record. Plain C11 that is also C++17 and later.
 *
 * The records are exchanged as memory, so the widths below are part of the interface. They hold for a 64-bit
 * little-endian target whose long has 64 bits (LP64), which the checks at the end of this file enforce.
 */
#ifndef XTYPES_H
#define XTYPES_H

#include <limits.h>

typedef int           BOOL;   /**< truth value, 32 bits signed: 0 is false, everything else true */
typedef unsigned char BYTE;   /**< 8 bits unsigned */
typedef unsigned int  UINT;   /**< 32 bits unsigned */
typedef unsigned int  DWORD;  /**< 32 bits unsigned */
typedef unsigned int  UINT32; /**< 32 bits unsigned */
typedef unsigned long UINT64; /**< 64 bits unsigned */

#ifndef FALSE
#define FALSE 0 /**< the false BOOL */
#endif
#ifndef TRUE
#define TRUE 1 /**< the true BOOL that functions return */
#endif

/*
 * XTYPES_ENUM32 stands between the tag and the body of every enumeration. Records come from another process and may hold
 * values that no enumerator names; a fixed underlying type makes reading them defined in C++. C11 has no such syntax and
 * needs none.
 */
#ifdef __cplusplus
#define XTYPES_ENUM32 : int
#define XTYPES_ASSERT(condition, text) static_assert(condition, text)
#else
#define XTYPES_ENUM32
#define XTYPES_ASSERT(condition, text) _Static_assert(condition, text)
#endif

XTYPES_ASSERT(CHAR_BIT == 8 && sizeof(short) == 2, "the records need 8-bit bytes");
XTYPES_ASSERT(sizeof(int) == 4, "the records need a 32-bit int");
XTYPES_ASSERT(sizeof(long) == 8, "the records need a 64-bit long (LP64)");
XTYPES_ASSERT(sizeof(void*) == 8, "the records need 64-bit pointers (LP64)");
XTYPES_ASSERT(sizeof(float) == 4, "the records need a 32-bit float");
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the records are little-endian"
#endif

#endif
