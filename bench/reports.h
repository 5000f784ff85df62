#ifndef REPORTS_H
#define REPORTS_H

#include "all_reports.h"

/** The eight reports as the shared library that exports this function prints them. */
extern "C" [[gnu::visibility("default")]] const decltype(all_reports)& reports();

#endif
