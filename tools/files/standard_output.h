/**
 * @file standard_output.h
 * Texts on standard output, which may be of any size.
 */
#ifndef FILES_STANDARD_OUTPUT_H
#define FILES_STANDARD_OUTPUT_H

#include <string_view>

namespace files
{

/**
 * Writes a text to standard output. What fits into its buffer may still be there afterwards.
 * @throw Failure if it cannot be written
 */
void print(std::string_view text);

/**
 * Writes out what standard output still holds.
 * @throw Failure if it cannot be written
 */
void flush();

} // namespace files

#endif
