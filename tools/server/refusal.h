/**
 * @file refusal.h
 * A request that is not answered as it was meant.
 */
#ifndef SERVER_REFUSAL_H
#define SERVER_REFUSAL_H

#include <stdexcept>
#include <string>

namespace server
{

/** Ends a request with a status and one line that says why. */
class Refusal : public std::runtime_error
{
public:
    /** @param status of HTTP, 400 or above */
    Refusal(unsigned status, const std::string& text) : runtime_error(text), status_(status) {}

    unsigned status() const { return status_; }

private:
    unsigned status_;
};

} // namespace server

#endif
