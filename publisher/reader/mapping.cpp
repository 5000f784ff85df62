#include "mapping.h"

#include <csignal>
#include <cstdint>
#include <sys/mman.h>
#include <utility>

namespace published
{

namespace
{

/** What this thread is reading. The handler runs in the thread that touched the page, so it sees its own. */
struct Range
{
    std::byte* begin;
    std::size_t size;
    bool lost;
};
constinit thread_local volatile Range being_read = {};

struct sigaction previous_action = {};

void on_bus_error(int number, siginfo_t* information, void*)
{
    const auto fault = reinterpret_cast<std::uintptr_t>(information->si_addr);
    const auto begin = reinterpret_cast<std::uintptr_t>(being_read.begin);
    if (fault - begin < being_read.size)
    {
        void* zeros = mmap(being_read.begin, being_read.size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
        if (zeros != MAP_FAILED)
        {
            being_read.lost = true;
            return;
        }
    }
    sigaction(number, &previous_action, nullptr); // the access repeats, and meets what would have handled it
}

void install_handler()
{
    static const bool installed = []
    {
        struct sigaction action = {};
        action.sa_sigaction = on_bus_error;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK;
        return sigaction(SIGBUS, &action, &previous_action) == 0;
    }();
    static_cast<void>(installed);
}

} // namespace

Mapping::Mapping(int descriptor, std::size_t size)
{
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (bytes != MAP_FAILED) bytes_ = {static_cast<std::byte*>(bytes), size};
}

Mapping::Mapping(Mapping&& other) noexcept
    : bytes_(std::exchange(other.bytes_, {})), has_lost_pages_(std::exchange(other.has_lost_pages_, false))
{
}

Mapping& Mapping::operator=(Mapping&& other) noexcept
{
    std::swap(bytes_, other.bytes_);
    std::swap(has_lost_pages_, other.has_lost_pages_);
    return *this;
}

Mapping::~Mapping()
{
    if (!bytes_.empty()) munmap(bytes_.data(), bytes_.size());
}

Reading::Reading(Mapping& mapping) : mapping_(mapping)
{
    install_handler();
    being_read.begin = mapping.bytes_.data();
    being_read.size = mapping.bytes_.size();
    being_read.lost = false;
}

Reading::~Reading()
{
    being_read.begin = nullptr;
    being_read.size = 0;
    if (being_read.lost) mapping_.has_lost_pages_ = true;
}

} // namespace published
