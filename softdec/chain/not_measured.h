/**
 * @file not_measured.h
 * The fields of the records that this decoder does not measure: a reader shows them as such instead of as 0.
 */
#ifndef SOFTDEC_CHAIN_NOT_MEASURED_H
#define SOFTDEC_CHAIN_NOT_MEASURED_H

#include <vector>

namespace softdec
{

/** What a run can measure. */
struct Abilities
{
    bool has_arrivals = true; /**< the input has arrival times */
    bool decode = true;       /**< pictures and sound are decoded */
    bool live = true;         /**< what decoding costs is measured */
};

/** The public names of the fields that are not measured then. */
std::vector<const char*> fields_not_measured(const Abilities& abilities);

} // namespace softdec

#endif
