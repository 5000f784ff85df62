#include "report_library.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <new>
#include <string_view>
#include <vector>

#include "failure.h"

namespace views
{

namespace
{

constexpr const char* default_name = STATS_SONAME;

/** The folders in which the dynamic linker looks for a library of this executable, in its order. */
std::vector<std::string> library_folders()
{
    const std::unique_ptr<void, int (*)(void*)> self(dlopen(nullptr, RTLD_LAZY), &dlclose);
    Dl_serinfo size = {};
    if (!self || dlinfo(self.get(), RTLD_DI_SERINFOSIZE, &size) != 0) return {};
    std::vector<std::max_align_t> memory(size.dls_size / sizeof(std::max_align_t) + 1);
    auto* const info = new (memory.data()) Dl_serinfo(size);
    if (dlinfo(self.get(), RTLD_DI_SERINFO, info) != 0) return {};

    std::vector<std::string> folders;
    for (const Dl_serpath* folder = info->dls_serpath; folder != info->dls_serpath + info->dls_cnt; ++folder)
        folders.push_back(std::filesystem::path(folder->dls_name).lexically_normal().string());
    return folders;
}

/** The file that the dynamic linker will take for the library, if one of the folders has it. */
std::optional<std::string> find_default(const std::vector<std::string>& folders)
{
    for (const std::string& folder : folders)
    {
        std::error_code ignored;
        const std::filesystem::path file = std::filesystem::path(folder) / default_name;
        if (std::filesystem::exists(file, ignored)) return file.string();
    }
    return std::nullopt;
}

/**
 * Refuses a library that was cut short, as by a full disk. The dynamic linker maps it all the same, and the process dies of
 * the first access behind the file's end. What else may be wrong with a file, the dynamic linker says.
 */
void require_whole(const std::string& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const auto size = static_cast<std::uint64_t>(file.tellg());
    ElfW(Ehdr) header;
    file.seekg(0);
    file.read(reinterpret_cast<char*>(&header), sizeof(header));
    if (!file || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_phentsize != sizeof(ElfW(Phdr))) return;

    file.seekg(static_cast<std::streamoff>(header.e_phoff));
    for (unsigned i = 0; i < header.e_phnum; ++i)
    {
        ElfW(Phdr) segment;
        if (!file.read(reinterpret_cast<char*>(&segment), sizeof(segment))) return;
        if (segment.p_type == PT_LOAD && (segment.p_offset > size || segment.p_filesz > size - segment.p_offset))
            files::fail_input(path + ": is cut short: a part to be loaded lies behind its " + std::to_string(size) + " bytes");
    }
}

/** The name for dlopen, which searches the system's folders for a name without a slash. */
std::string name_to_open(const std::string& file)
{
    return file.find('/') == std::string::npos ? "./" + file : file;
}

} // namespace

void ReportLibrary::Close::operator()(void* handle) const
{
    dlclose(handle);
}

ReportLibrary::ReportLibrary(const std::optional<std::string>& file)
{
    const std::vector<std::string> folders = file ? std::vector<std::string>() : library_folders();
    const std::optional<std::string> found = file ? name_to_open(*file) : find_default(folders);
    if (found) require_whole(*found);

    const std::string name = file ? *found : default_name;
    handle_.reset(dlopen(name.c_str(), RTLD_NOW));
    if (handle_) return;

    const char* text = dlerror();
    std::string_view reason = text != nullptr ? text : "unknown reason";
    if (reason.starts_with(name + ": ")) reason.remove_prefix(name.size() + 2);
    std::string message = files::shown(file.value_or(default_name)) + ": cannot be loaded as the report library: " + std::string(reason);
    if (!found)
    {
        message += "; looked in ";
        for (const std::string& folder : folders) message += folder + ", ";
        message += "and --library FILE names another";
    }
    files::fail_input(message);
}

void* ReportLibrary::find(const char* function) const
{
    void* const address = dlsym(handle_.get(), function);
    if (address == nullptr) return nullptr;

    Dl_info place;
    const ElfW(Sym)* symbol = nullptr;
    if (dladdr1(address, &place, const_cast<void**>(reinterpret_cast<const void**>(&symbol)), RTLD_DL_SYMENT) == 0 || symbol == nullptr ||
        ELF64_ST_TYPE(symbol->st_info) != STT_FUNC)
        files::fail_input(path() + ": " + function + " is not a function");
    return address;
}

std::string ReportLibrary::path() const
{
    link_map* map = nullptr;
    if (dlinfo(handle_.get(), RTLD_DI_LINKMAP, &map) != 0 || map == nullptr)
        files::fail_input(std::string("the report library's file: ") + dlerror());
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(map->l_name, nullptr), &std::free);
    return resolved ? resolved.get() : map->l_name;
}

} // namespace views
