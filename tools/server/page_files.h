/**
 * @file page_files.h
 * The files of the page as they are in the program. The build makes the list.
 */
#ifndef SERVER_PAGE_FILES_H
#define SERVER_PAGE_FILES_H

#include <span>
#include <string_view>

namespace server
{

/** A file of the page. */
struct EmbeddedFile
{
    std::string_view path;           /**< as "/page.css" */
    const std::string_view* content; /**< which other files may set up later than this table */
};

/** All of them. */
std::span<const EmbeddedFile> page_files();

} // namespace server

#endif
