/*
 * Signed arithmetic that wraps. A record may hold any number, and signed overflow is undefined, so these go through
 * unsigned types.
 */
#ifndef WRAPPING_H
#define WRAPPING_H

/** nMinuend less nSubtrahend, modulo 2^32. */
constexpr int _Difference(int nMinuend, int nSubtrahend)
{
    return static_cast<int>(static_cast<unsigned int>(nMinuend) - static_cast<unsigned int>(nSubtrahend));
}

/** The same of two unsigned fields: how far the first lies above the second, negative if below. */
constexpr int _Difference(unsigned int nMinuend, unsigned int nSubtrahend)
{
    return static_cast<int>(nMinuend - nSubtrahend);
}

/** The absolute value. The most negative number has no positive counterpart and stays as it is. */
constexpr int _AbsoluteValue(int nValue)
{
    return nValue < 0 ? _Difference(0, nValue) : nValue;
}

#endif
