/**
 * @file table_faults.h
 * The faults of the table: each put between two moments of a stream, with what is expected of it.
 */
#ifndef TESTS_SOFTDEC_TABLE_FAULTS_H
#define TESTS_SOFTDEC_TABLE_FAULTS_H

#include <functional>
#include <string>
#include <vector>

#include "packets.h"

namespace softdec_tests
{

/** A test stream that goes on for 30 s, its sound without a step. */
struct TestStream
{
    std::string name;
    Bytes bytes;
    std::vector<Arrival> arrivals; /**< over UDP */
};

TestStream test_stream(const std::string& name);

/** Where a fault is. */
struct Place
{
    softdec::Nanoseconds begin = 0;
    softdec::Nanoseconds end = 0;
    softdec::Nanoseconds look = 0; /**< when its consequences are looked at */
    std::size_t first = 0;         /**< number of the packet that comes first then */
    std::size_t last = 0;          /**< of the one behind the last */
};

/** Four seconds. @param position where they begin in the stream [s] */
Place place_at(const TestStream& stream, double position);

/** A stream with a fault in it. */
struct Injected
{
    std::vector<Arrival> arrivals;
    long expected = 0;     /**< how much is counted */
    bool at_least = false; /**< the count is not exact: it depends on the pictures that are hit */
};

struct TableFault
{
    const char* name;
    std::vector<std::string> counters; /**< the counts that are added up, as faults_of() names them */
    std::vector<std::string> stages;   /**< that may be named first; "-" = none, as it is no fault for a viewer */
    std::function<Injected(const TestStream&, const Place&)> inject;
};

std::vector<TableFault> table_faults();

} // namespace softdec_tests

#endif
