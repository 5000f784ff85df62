#include "token.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "failure.h"
#include "scratch_directory.h"

using server::Token;

namespace
{

class TokenTest : public testing::Test
{
protected:
    std::string file(const std::string& content)
    {
        std::string path = directory_.write("token", content);
        std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        return path;
    }

    ScratchDirectory directory_;
};

TEST_F(TokenTest, IsTheFirstLine)
{
    const Token token(file("0123456789abcdef\nsomething else\n"));
    EXPECT_TRUE(token.is_shown("Bearer 0123456789abcdef"));
    EXPECT_TRUE(token.is_shown("bearer  0123456789abcdef"));
    for (const char* shown : {"", "Bearer", "Bearer ", "Bearer 0123456789abcde", "Bearer 0123456789abcdeF", "Bearer 0123456789abcdef0",
                              "Bearer 0123456789abcdef0123456789abcdef", "Basic 0123456789abcdef", "0123456789abcdef",
                              "Bearer1 0123456789abcdef", "Bearer 0123456789abcdef something"})
        EXPECT_FALSE(token.is_shown(shown)) << shown;
}

TEST_F(TokenTest, IsThePasswordOfAnyUser)
{
    const Token token(file("0123456789abcdef\n"));
    // By base64 of coreutils, of: operator:, :, a:, and once more with the scheme in other letters.
    for (const char* shown : {"Basic b3BlcmF0b3I6MDEyMzQ1Njc4OWFiY2RlZg==", "Basic OjAxMjM0NTY3ODlhYmNkZWY=",
                              "Basic YTowMTIzNDU2Nzg5YWJjZGVm", "basic  OjAxMjM0NTY3ODlhYmNkZWY="})
        EXPECT_TRUE(token.is_shown(shown)) << shown;
    // operator:0123456789abcdeF, operator:0123456789abcdef0, operator, 0123456789abcdef:, operator:x:0123456789abcdef; and what is not
    // base64.
    for (const char* shown : {"Basic b3BlcmF0b3I6MDEyMzQ1Njc4OWFiY2RlRg==", "Basic b3BlcmF0b3I6MDEyMzQ1Njc4OWFiY2RlZjA=",
                              "Basic b3BlcmF0b3I=", "Basic MDEyMzQ1Njc4OWFiY2RlZjo=", "Basic b3BlcmF0b3I6eDowMTIzNDU2Nzg5YWJjZGVm", "Basic",
                              "Basic ", "Basic =", "Basic OjAxMjM0NTY3ODlhYmNkZWY", "Basic \xC3\xA9", "Basic operator:0123456789abcdef",
                              "Bearer OjAxMjM0NTY3ODlhYmNkZWY=", "Basic1 OjAxMjM0NTY3ODlhYmNkZWY="})
        EXPECT_FALSE(token.is_shown(shown)) << shown;
    EXPECT_FALSE(token.is_shown("Basic " + std::string(20000, 'A')));
}

TEST_F(TokenTest, IsRefusedWhereItIsNone)
{
    for (const char* content : {"", "\n0123456789abcdef\n", "too short\n", "0123456789 abcdef\n", "0123456789abcd\xC3\xA9\n"})
        EXPECT_THROW(Token{file(content)}, files::Failure) << content;
    EXPECT_THROW(Token{directory_ / "missing"}, files::Failure);
}

TEST_F(TokenTest, IsRefusedWhereEverybodyMayReadIt)
{
    const std::string path = file("0123456789abcdef\n");
    std::filesystem::permissions(path, std::filesystem::perms::others_read, std::filesystem::perm_options::add);
    EXPECT_THROW(Token{path}, files::Failure);
}

} // namespace
