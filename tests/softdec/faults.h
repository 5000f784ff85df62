/**
 * @file faults.h
 * Every count of a fault in the records, by name: on a clean stream all of them are 0.
 */
#ifndef TESTS_SOFTDEC_FAULTS_H
#define TESTS_SOFTDEC_FAULTS_H

#include <map>
#include <string>

#include "component.h"

namespace softdec_tests
{

using Faults = std::map<std::string, long>;

/** The counts of faults that are not 0. */
Faults faults_of(const records::Records& records);

} // namespace softdec_tests

#endif
