/**
 * @file negotiation.h
 * What a client likes best, as RFC 9110, section 12.5, has it.
 */
#ifndef SERVER_NEGOTIATION_H
#define SERVER_NEGOTIATION_H

#include <string_view>

#include "metrics.h"

namespace server
{

/** The format that a header Accept asks for. Who asks for neither gets the one that everybody reads. */
views::MetricsFormat preferred_format(std::string_view accept);

/** Whether a header Accept-Encoding asks for gzip. */
bool accepts_gzip(std::string_view accept_encoding);

} // namespace server

#endif
