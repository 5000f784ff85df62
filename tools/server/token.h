/**
 * @file token.h
 * The secret that clients show (RFC 6750).
 */
#ifndef SERVER_TOKEN_H
#define SERVER_TOKEN_H

#include <string>
#include <string_view>

namespace server
{

/** A bearer token. */
class Token
{
public:
    /**
     * Reads it: the first line of a file.
     * @throw Failure if the file cannot be read, if everybody may read it, or if it holds none
     */
    explicit Token(const std::string& path);

    /** Whether a header Authorization shows it. How long that takes does not depend on how much of it is right. */
    bool is_shown(std::string_view authorization) const;

private:
    std::string token_;
};

} // namespace server

#endif
