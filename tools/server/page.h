/**
 * @file page.h
 * The files of the page, which are in the program.
 */
#ifndef SERVER_PAGE_H
#define SERVER_PAGE_H

#include "request.h"
#include "response.h"

namespace server
{

/** A file of the page. @param path as "/page.css" @return no response where there is no such file */
Answer page_file(const Request& request);

} // namespace server

#endif
