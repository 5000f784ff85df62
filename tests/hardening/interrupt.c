/*
 * Preloaded into the tool: sends the process the signal INTERRUPT_WITH right before its INTERRUPT_ATth call, counted from 1,
 * of a function that changes files.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

/* A shell in the background, or nohup, may have left the process with the signal ignored. */
__attribute__((constructor)) static void RestoreDefaultAction(void)
{
    const char* pWith = getenv("INTERRUPT_WITH");
    if (pWith) signal(atoi(pWith), SIG_DFL);
}

static void CountCall(void)
{
    static int nCalls;
    const char* pAt = getenv("INTERRUPT_AT");
    const char* pWith = getenv("INTERRUPT_WITH");
    if (pAt && pWith && ++nCalls == atoi(pAt)) raise(atoi(pWith));
}

#define COUNTED(result, name, parameters, ...)    \
    result name parameters                        \
    {                                             \
        result(*next) parameters;                 \
        *(void**)&next = dlsym(RTLD_NEXT, #name); \
        CountCall();                              \
        return next(__VA_ARGS__);                 \
    }

COUNTED(int, mkostemp, (char* pTemplate, int nFlags), pTemplate, nFlags)
COUNTED(ssize_t, write, (int nFile, const void* pData, size_t nSize), nFile, pData, nSize)
COUNTED(int, fchmod, (int nFile, mode_t nMode), nFile, nMode)
COUNTED(int, rename, (const char* pOld, const char* pNew), pOld, pNew)
