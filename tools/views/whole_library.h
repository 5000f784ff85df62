/**
 * @file whole_library.h
 * Whether a library's file is all there.
 */
#ifndef VIEWS_WHOLE_LIBRARY_H
#define VIEWS_WHOLE_LIBRARY_H

#include <string>

namespace views
{

/**
 * Refuses a library that was cut short, as by a full disk. The dynamic linker maps it all the same, and the process dies of
 * the first access behind the file's end. What else may be wrong with a file, the dynamic linker says.
 * @throw Failure if a part that is to be loaded lies behind the end of the file
 */
void require_whole_library(const std::string& path);

} // namespace views

#endif
