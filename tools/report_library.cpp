#include "report_library.h"

#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <string_view>

#include "failure.h"

namespace
{

constexpr const char* defaultName = STATS_SONAME;

/** The name for dlopen, which searches the system's folders for a name without a slash. */
std::string name_to_open(const std::optional<std::string>& file)
{
    if (!file) return defaultName;
    return file->find('/') == std::string::npos ? "./" + *file : *file;
}

} // namespace

void ReportLibrary::Close::operator()(void* handle) const
{
    dlclose(handle);
}

ReportLibrary::ReportLibrary(const std::optional<std::string>& file)
{
    const std::string name = name_to_open(file);
    handle_.reset(dlopen(name.c_str(), RTLD_NOW));
    if (handle_) return;

    const char* text = dlerror();
    std::string_view reason = text != nullptr ? text : "unknown reason";
    if (reason.starts_with(name + ": ")) reason.remove_prefix(name.size() + 2);
    throw Failure(ExitStatus::InputFailed, file.value_or(defaultName) + ": cannot be loaded as the report library: " + std::string(reason));
}

void* ReportLibrary::find(const char* function) const
{
    return dlsym(handle_.get(), function);
}

std::string ReportLibrary::path() const
{
    link_map* map = nullptr;
    if (dlinfo(handle_.get(), RTLD_DI_LINKMAP, &map) != 0 || map == nullptr)
        throw Failure(ExitStatus::InputFailed, std::string("the report library's file: ") + dlerror());
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(map->l_name, nullptr), &std::free);
    return resolved ? resolved.get() : map->l_name;
}
