/**
 * @file page.h
 * The files of the page, which are in the program.
 */
#ifndef SERVER_PAGE_H
#define SERVER_PAGE_H

#include <string_view>

#include "request.h"
#include "response.h"

namespace server
{

/** A file of the page. @param path as "/page.css" @return no response where there is no such file */
Answer page_file(const Request& request);

/** Whether a path is that of a file of the page. They hold nothing about decoders: everybody may have them, and is asked for the token there. */
bool is_page_file(std::string_view path);

} // namespace server

#endif
