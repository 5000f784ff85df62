#include "failure.h"

#include <cstdio>

#include "program.h"

namespace files
{

Failure::Failure(ExitStatus status, std::string_view message) : std::runtime_error(printable(message)), status_(status) {}

void fail_input(std::string_view message)
{
    throw Failure(ExitStatus::input_failed, message);
}

std::string printable(std::string_view text)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte <= 0x7e)
            escaped += character;
        else
            (escaped += "\\x").append({digits[byte >> 4], digits[byte & 0x0f]});
    }
    return escaped;
}

void warn(std::string_view message)
{
    std::fprintf(stderr, "%s: %s\n", program_name(), printable(message).c_str());
}

std::string shown(const std::string& path)
{
    return path.empty() ? "''" : path;
}

} // namespace files
