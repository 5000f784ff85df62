/**
 * @file not_measured.h
 * The fields of the records that this decoder does not measure: a reader shows them as such instead of as 0.
 */
#ifndef SOFTDEC_CHAIN_NOT_MEASURED_H
#define SOFTDEC_CHAIN_NOT_MEASURED_H

#include <vector>

#include "dictionary.h"

namespace softdec
{

/** What a run can measure. */
struct Abilities
{
    bool has_arrivals = true; /**< the input has arrival times */
    bool decode = true;       /**< pictures and sound are decoded */
    bool live = true;         /**< what decoding costs is measured */
};

/** The fields that are not measured then, in the dictionary's order. */
std::vector<const dictionary::Field*> fields_not_measured(const Abilities& abilities);

} // namespace softdec

#endif
