#include "token.h"

#include <algorithm>
#include <cctype>
#include <sys/stat.h>

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

} // namespace

Token::Token(const std::string& path)
{
    const auto fail = [&path](const std::string& text)
    { throw files::Failure(files::ExitStatus::input_failed, files::shown(path) + ": " + text); };
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
    constexpr std::string_view scheme = "bearer ";
    const auto same = [](unsigned char a, unsigned char b) { return std::tolower(a) == b; };
    if (authorization.size() < scheme.size() ||
        !std::equal(scheme.begin(), scheme.end(), authorization.begin(),
                    [&](char a, char b) { return same(static_cast<unsigned char>(b), static_cast<unsigned char>(a)); }))
        return false;
    authorization.remove_prefix(std::min(authorization.find_first_not_of(' ', scheme.size()), authorization.size()));
    // Every character that was shown is compared, with some character of the token where that is shorter.
    unsigned difference = authorization.size() == token_.size() ? 0 : 1;
    for (std::size_t i = 0; i < authorization.size(); ++i)
        difference |= static_cast<unsigned char>(authorization[i]) ^ static_cast<unsigned char>(token_[i % token_.size()]);
    return difference == 0;
}

} // namespace server
