# Writes a C++ source that holds a file's bytes: cmake -DINPUT=FILE -DOUTPUT=SOURCE -DNAME=NAMESPACE::NAME -P embed.cmake
file(READ "${INPUT}" bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "^(.*)::([^:]*)$" "\\1;\\2" name "${NAME}")
list(GET name 0 space)
list(GET name 1 variable)
file(WRITE "${OUTPUT}" "// Generated.
#include <string_view>

namespace ${space}
{

static const unsigned char bytes[] = {
${bytes}};

extern const std::string_view ${variable};
const std::string_view ${variable}(reinterpret_cast<const char*>(bytes), ${size});

} // namespace ${space}
")
