/**
 * @file utf8.h
 * Texts of records hold any bytes; JSON and metrics are UTF-8.
 */
#ifndef VIEWS_UTF8_H
#define VIEWS_UTF8_H

#include <string>
#include <string_view>

namespace views
{

/**
 * Makes a text valid UTF-8.
 * @param text any bytes
 * @return the text, with U+FFFD for each longest part of it that begins as a character but is none (Unicode, section 3.9)
 */
std::string valid_utf8(std::string_view text);

} // namespace views

#endif
