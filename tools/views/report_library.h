/**
 * @file report_library.h
 * The report library, loaded into this process as the appliance's tools load it: its services come from this executable.
 */
#ifndef VIEWS_REPORT_LIBRARY_H
#define VIEWS_REPORT_LIBRARY_H

#include <memory>
#include <optional>
#include <string>

namespace views
{

/** A loaded report library. */
class ReportLibrary
{
public:
    /**
     * Loads the library.
     * @param file the library's file; nothing = libstats.so.1 where the dynamic linker finds it for this executable
     * @throw Failure if it cannot be loaded
     */
    explicit ReportLibrary(const std::optional<std::string>& file);

    /**
     * Finds a function.
     * @return its address, or NULL if the library has nothing of that name
     * @throw Failure if the name is not a function's
     */
    void* find(const char* function) const;

    /** The file that the library was loaded from. */
    std::string path() const;

private:
    struct Close
    {
        void operator()(void* handle) const;
    };
    std::unique_ptr<void, Close> handle_;
};

} // namespace views

#endif
