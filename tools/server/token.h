/**
 * @file token.h
 * The secret that clients show: programs as it is (RFC 6750), browsers as the password of HTTP Basic authentication (RFC 7617), which
 * they ask people for themselves.
 */
#ifndef SERVER_TOKEN_H
#define SERVER_TOKEN_H

#include <string>
#include <string_view>

namespace server
{

/** A token. */
class Token
{
public:
    /**
     * Reads it: the first line of a file.
     * @throw Failure if the file cannot be read, if everybody may read it, or if it holds none
     */
    explicit Token(const std::string& path);

    /** Whether a header Authorization shows it, under any user's name. How long that takes does not depend on how much of it is right. */
    bool is_shown(std::string_view authorization) const;

private:
    bool is(std::string_view shown) const;

    std::string token_;
};

} // namespace server

#endif
