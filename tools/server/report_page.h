/**
 * @file report_page.h
 * /api/v1/decoders/NAME/report: the reports as the report library prints them.
 */
#ifndef SERVER_REPORT_PAGE_H
#define SERVER_REPORT_PAGE_H

#include <mutex>
#include <optional>
#include <string>

#include "report_library.h"
#include "request.h"
#include "sight.h"

namespace server
{

/** The reports of decoders. The library prints to standard output, so one at a time. Thread-safe. */
class ReportPage
{
public:
    /** @param library_file file of the report library; nothing = the one that belongs to this program @throw Failure */
    explicit ReportPage(const std::optional<std::string>& library_file) : library_file_(library_file), library_(library_file) {}

    /** The reports that a request asks for, with the ages that they have now. @throw Refusal */
    std::string text(const Sight& sight, const Request& request);

private:
    std::optional<std::string> library_file_;
    views::ReportLibrary library_; // stays loaded
    std::mutex mutex_;
};

} // namespace server

#endif
