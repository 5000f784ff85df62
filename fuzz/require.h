/**
 * @file require.h
 * How a fuzz target says that something went wrong which the sanitizers do not see.
 */
#ifndef REQUIRE_H
#define REQUIRE_H

#include <cstdio>
#include <cstdlib>

/** Ends the process if a condition does not hold, so that the fuzzer keeps the input. */
inline void require(bool holds, const char* condition)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", condition);
    std::abort();
}

#endif
