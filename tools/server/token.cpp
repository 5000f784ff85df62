#include "token.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <resolv.h>
#include <strings.h>
#include <sys/stat.h>

#include "bounds.h"
#include "failure.h"
#include "text_file.h"

namespace server
{

namespace
{

bool is_token_character(unsigned char character)
{
    return std::isalnum(character) != 0 || std::string_view("-._~+/=").find(static_cast<char>(character)) != std::string_view::npos;
}

/** What stands behind the name of an authentication scheme; nothing = it is another scheme. */
std::optional<std::string_view> credentials(std::string_view authorization, std::string_view scheme)
{
    if (authorization.size() <= scheme.size() || authorization[scheme.size()] != ' ') return {};
    if (strncasecmp(authorization.data(), scheme.data(), scheme.size()) != 0) return {};
    return authorization.substr(std::min(authorization.find_first_not_of(' ', scheme.size()), authorization.size()));
}

/** The password in the credentials of HTTP Basic authentication, which are user:password in base64; empty = there is none. */
std::string password_in(const std::string& credentials)
{
    std::array<unsigned char, longest_headers> decoded;
    const int size = b64_pton(credentials.c_str(), decoded.data(), decoded.size());
    if (size < 0) return {};
    const std::string text(decoded.begin(), decoded.begin() + size);
    const std::size_t colon = text.find(':');
    return colon == std::string::npos ? std::string() : text.substr(colon + 1);
}

} // namespace

Token::Token(const std::string& path)
{
    const auto fail = [&path](const std::string& text) { files::fail_input(files::shown(path) + ": " + text); };
    struct stat file = {};
    if (stat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode) && (file.st_mode & S_IROTH) != 0)
        fail("everybody may read the token; take that away with chmod o-r");
    token_ = read_text_file(path);
    token_.resize(std::min(token_.find_first_of("\r\n"), token_.size()));
    if (token_.size() < 16) fail("the first line is the token, and has to have 16 characters at least");
    if (!std::ranges::all_of(token_, is_token_character)) fail("a token has letters, digits and -._~+/= only");
}

bool Token::is_shown(std::string_view authorization) const
{
    if (const auto shown = credentials(authorization, "Bearer")) return is(*shown);
    if (const auto shown = credentials(authorization, "Basic")) return is(password_in(std::string(*shown)));
    return false;
}

bool Token::is(std::string_view shown) const
{
    // Every character that was shown is compared, with some character of the token where that is shorter.
    unsigned difference = shown.size() == token_.size() ? 0 : 1;
    for (std::size_t i = 0; i < shown.size(); ++i)
        difference |= static_cast<unsigned char>(shown[i]) ^ static_cast<unsigned char>(token_[i % token_.size()]);
    return difference == 0;
}

} // namespace server
