/**
 * @file version.cpp
 * decstats version: the versions of tool and library, or the version records in any file.
 */
#include <cstdio>
#include <memory>
#include <utility>

#include "commands.h"
#include "failure.h"
#include "options.h"
#include "report_library.h"
#include "version_record.h"

namespace commands
{

namespace
{

/** Prints every version record of a file, with an empty line between them. */
void print_version_records(const std::string& path)
{
    files::InputFile file(path);
    bool is_first = true;
    const std::uint64_t count = find_version_records(file,
                                                     [&is_first](const QRVERSIONINFOBLOB& record, std::uint64_t offset)
                                                     {
                                                         if (!std::exchange(is_first, false)) std::puts("");
                                                         print_version_record(record, offset);
                                                     });
    if (count == 0) files::fail_input(file.name() + ": no version record found");
}

void print_versions(const LibraryFile& library)
{
    const std::string path = views::ReportLibrary(library).path();
    std::printf("%s\n\n%-11s: %s\n", version_line, "Library", files::printable(path).c_str());
    print_version_records(path);
}

} // namespace

void add_version(Command& command, Invocation& invocation)
{
    const auto file = std::make_shared<std::optional<std::string>>();
    command.value("FILE", *file, "Library, executable or core image to search, - for standard input");
    command.run([file, &invocation] { *file ? print_version_records(**file) : print_versions(invocation.library); });
}

} // namespace commands
