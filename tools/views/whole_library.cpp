#include "whole_library.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <link.h>

#include "failure.h"

namespace views
{

void require_whole_library(const std::string& path)
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
        if (segment.p_type != PT_LOAD || (segment.p_offset <= size && segment.p_filesz <= size - segment.p_offset)) continue;
        throw files::Failure(files::ExitStatus::InputFailed,
                             path + ": is cut short: a part to be loaded lies behind its " + std::to_string(size) + " bytes");
    }
}

} // namespace views
