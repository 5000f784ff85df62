/*
 * Preloaded into the tool, it makes one call of a function of the C library end otherwise than it would: the FAULT_ATth call,
 * counted from 1, of the function FAULT_IN, or of any of those that change files if that is "files".
 *
 *     FAULT=signal:NUMBER   the process gets the signal right before the call
 *     FAULT=error:NUMBER    the call fails with this error number and does nothing else
 *     FAULT=cut:NUMBER      the call transfers one byte, and the next one fails with this error number
 *     FAULT=short           a read or write transfers one byte
 *     FAULT=none            the call succeeds and does nothing
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum Fault
{
    FAULT_NOT_HERE,
    FAULT_ERROR,
    FAULT_SHORT,
    FAULT_NONE,
};

/* What is to happen to this call of a function. */
static enum Fault FaultOf(const char* pFunction, int bChangesFiles)
{
    static int nCalls;
    const char* pIn = getenv("FAULT_IN");
    const char* pAt = getenv("FAULT_AT");
    const char* pFault = getenv("FAULT");
    if (!pIn || !pAt || !pFault) return FAULT_NOT_HERE;
    if (strcmp(pIn, pFunction) != 0 && !(bChangesFiles && strcmp(pIn, "files") == 0)) return FAULT_NOT_HERE;
    ++nCalls;
    const int bCut = strncmp(pFault, "cut:", 4) == 0;
    if (bCut && nCalls == atoi(pAt) + 1)
    {
        errno = atoi(pFault + 4);
        return FAULT_ERROR;
    }
    if (nCalls != atoi(pAt)) return FAULT_NOT_HERE;
    if (bCut) return FAULT_SHORT;

    if (strncmp(pFault, "signal:", 7) == 0) raise(atoi(pFault + 7));
    if (strncmp(pFault, "error:", 6) == 0)
    {
        errno = atoi(pFault + 6);
        return FAULT_ERROR;
    }
    if (strcmp(pFault, "short") == 0) return FAULT_SHORT;
    return strcmp(pFault, "none") == 0 ? FAULT_NONE : FAULT_NOT_HERE;
}

/* A function that returns -1 where it fails. With "short", its last argument becomes 1. */
#define WRAPPED(result, name, changesFiles, parameters, whole, brief) \
    result name parameters                                            \
    {                                                                 \
        result(*next) parameters;                                     \
        *(void**)&next = dlsym(RTLD_NEXT, #name);                     \
        switch (FaultOf(#name, changesFiles))                         \
        {                                                             \
        case FAULT_ERROR: return -1;                                  \
        case FAULT_SHORT: return next brief;                          \
        case FAULT_NONE: return 0;                                    \
        default: return next whole;                                   \
        }                                                             \
    }

WRAPPED(int, mkostemp, 1, (char* pTemplate, int nFlags), (pTemplate, nFlags), (pTemplate, nFlags))
WRAPPED(ssize_t, write, 1, (int nFile, const void* pData, size_t nSize), (nFile, pData, nSize), (nFile, pData, 1))
WRAPPED(int, fchmod, 1, (int nFile, mode_t nMode), (nFile, nMode), (nFile, nMode))
WRAPPED(int, rename, 1, (const char* pOld, const char* pNew), (pOld, pNew), (pOld, pNew))
WRAPPED(ssize_t, pwrite, 0, (int nFile, const void* pData, size_t nSize, off_t nAt), (nFile, pData, nSize, nAt), (nFile, pData, 1, nAt))
WRAPPED(int, ftruncate, 0, (int nFile, off_t nSize), (nFile, nSize), (nFile, nSize))
WRAPPED(int, fsync, 0, (int nFile), (nFile), (nFile))
WRAPPED(ssize_t, read, 0, (int nFile, void* pData, size_t nSize), (nFile, pData, nSize), (nFile, pData, 1))
WRAPPED(int, close, 0, (int nFile), (nFile), (nFile))
WRAPPED(int, flock, 0, (int nFile, int nOperation), (nFile, nOperation), (nFile, nOperation))

/* Without a mode nothing is created, and then none is looked at. */
int open(const char* pPath, int nFlags, ...)
{
    int (*next)(const char*, int, ...);
    *(void**)&next = dlsym(RTLD_NEXT, "open");
    va_list args;
    va_start(args, nFlags);
    const mode_t nMode = (nFlags & O_CREAT) != 0 ? va_arg(args, mode_t) : 0;
    va_end(args);
    return FaultOf("open", 0) == FAULT_ERROR ? -1 : next(pPath, nFlags, nMode);
}

/* It returns the error number. */
int posix_fallocate(int nFile, off_t nFrom, off_t nSize)
{
    int (*next)(int, off_t, off_t);
    *(void**)&next = dlsym(RTLD_NEXT, "posix_fallocate");
    return FaultOf("posix_fallocate", 0) == FAULT_ERROR ? errno : next(nFile, nFrom, nSize);
}

WRAPPED(int, fclose, 0, (FILE * pFile), (pFile), (pFile))
