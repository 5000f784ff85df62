/**
 * @file report.h
 * Prints the records with the report library, as any host process of it does.
 */
#ifndef SOFTDEC_CHAIN_REPORT_H
#define SOFTDEC_CHAIN_REPORT_H

#include "chain/virtual_clock.h"
#include "component.h"

namespace softdec
{

/** Prints all reports to standard output. The ages in them count from where the chain's clock stands. */
void print_report(const records::Records& records, const VirtualClock& clock, STATS_LEVEL level);

} // namespace softdec

#endif
