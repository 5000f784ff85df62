/**
 * @file why.h
 * Why something could not be opened, exactly.
 */
#ifndef PUBLISHER_READER_WHY_H
#define PUBLISHER_READER_WHY_H

#include <string>

#include "decoder.h"

namespace published
{

/** The state and text of a path that an error number kept from being opened. Looks at its owner and mode. */
Status why_not_opened(const std::string& path, int number);

} // namespace published

#endif
