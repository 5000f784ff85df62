#include "connections.h"

#include <sys/socket.h>

#include "bounds.h"

namespace server
{

using std::chrono::steady_clock;

OpenConnection* Connections::open(int descriptor)
{
    const std::scoped_lock lock(mutex_);
    return &open_.emplace_back(descriptor);
}

void Connections::close(OpenConnection* connection)
{
    const std::scoped_lock lock(mutex_);
    open_.remove_if([connection](const OpenConnection& one) { return &one == connection; });
}

void Connections::end_overdue()
{
    const steady_clock::time_point now = steady_clock::now();
    const std::scoped_lock lock(mutex_);
    for (const OpenConnection& one : open_)
        if (now - one.since.load() > longest_request) shutdown(one.descriptor, SHUT_RDWR);
}

} // namespace server
