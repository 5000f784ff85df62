#include "capture_error.h"

#include <cstring>

namespace capture
{

Error::Error(Problem problem, const std::string& path, const std::string& text)
    : std::runtime_error((path.empty() ? "''" : path) + ": " + text), problem_(problem)
{
}

Error system_error(Problem problem, const std::string& path, int number)
{
    return {problem, path, std::strerror(number)};
}

} // namespace capture
