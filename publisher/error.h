/**
 * @file error.h
 * Errors at opening, as values.
 */
#ifndef PUBLISHER_ERROR_H
#define PUBLISHER_ERROR_H

#include "stats_publish.h"

namespace publisher
{

/** Sets *error, which may be NULL, with a text that ends as the format says. */
__attribute__((format(printf, 3, 4))) void set_error(STATS_PUBLISH_ERROR* error, STATS_PUBLISH_CODE code, const char* format, ...);

/** Sets *error, which may be NULL, from an error number: the code that fits, and "WHAT: No such file or directory". */
__attribute__((format(printf, 3, 4))) void set_system_error(STATS_PUBLISH_ERROR* error, int number, const char* format, ...);

} // namespace publisher

#endif
