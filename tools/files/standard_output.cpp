#include "standard_output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "failure.h"

namespace files
{

namespace
{

[[noreturn]] void fail()
{
    throw Failure(ExitStatus::output_failed, std::string("standard output: ") + std::strerror(errno));
}

} // namespace

void print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail();
}

void flush()
{
    if (std::fflush(stdout) != 0) fail();
}

} // namespace files
