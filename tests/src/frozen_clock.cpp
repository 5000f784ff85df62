#include "frozen_clock.h"

// Takes the place of the C library's function for the test program and every library that it loads.
extern "C" time_t time(time_t* pTime) noexcept
{
    if (pTime) *pTime = frozen_now;
    return frozen_now;
}
