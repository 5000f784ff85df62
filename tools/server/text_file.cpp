#include "text_file.h"

#include <span>

#include "failure.h"
#include "input_file.h"

namespace server
{

std::string read_text_file(const std::string& path)
{
    constexpr std::size_t most = std::size_t{64} * 1024;
    files::InputFile file(path);
    std::string text(most + 1, '\0');
    text.resize(file.read(std::as_writable_bytes(std::span(text))));
    if (text.size() > most) files::fail_input(files::shown(path) + ": is longer than 64 KiB");
    return text;
}

} // namespace server
