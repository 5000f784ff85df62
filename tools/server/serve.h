/**
 * @file serve.h
 * The server from its start to the signal that ends it.
 */
#ifndef SERVER_SERVE_H
#define SERVER_SERVE_H

#include "options.h"

namespace server
{

/** Serves until SIGTERM or SIGINT comes. @throw Failure if it cannot */
void serve(const Options& options);

} // namespace server

#endif
