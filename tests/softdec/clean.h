/**
 * @file clean.h
 * What watchers see of a stream: findings in any second of it, and the faults that have been counted at its end. A clean stream has none.
 */
#ifndef TESTS_SOFTDEC_CLEAN_H
#define TESTS_SOFTDEC_CLEAN_H

#include <memory>
#include <string>

#include "chain/chain.h"
#include "faults.h"
#include "streams.h"

namespace softdec_tests
{

struct Seen
{
    std::string findings; /**< a line for each look that found something */
    Faults faults;        /**< but for wrap-arounds of the clock, which are none */
    std::unique_ptr<softdec::Chain> chain;
};

/** Runs a chain over what arrives, and has the diagnosis look at it each second. */
Seen watch(const std::vector<Arrival>& arrivals, bool decode = true);

/** The faults that a chain has counted, but for wrap-arounds of the clock. */
Faults faults_in(softdec::Chain& chain);

} // namespace softdec_tests

#endif
