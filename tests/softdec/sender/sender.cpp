/*
 * softdec_sender FILE.ts ADDRESS PORT [PASSES]: sends a transport stream over UDP again and again, each datagram when its PCR says,
 * with clock, time stamps and continuity counters going on.
 */
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "streams.h"

namespace
{

using namespace softdec_tests;

int send_all(const Bytes& stream, const sockaddr_in& receiver, long passes)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return errno;
    Passes repeated(stream);
    const auto began = std::chrono::steady_clock::now();
    for (long pass = 0; pass < passes; ++pass)
    {
        const std::chrono::nanoseconds offset(pass * repeated.length() * 100'000 / 9);
        for (const Arrival& datagram : datagrams(repeated.next()))
        {
            std::this_thread::sleep_until(began + offset + std::chrono::nanoseconds(datagram.moment - beginning));
            const ssize_t sent = sendto(descriptor, datagram.bytes.data(), datagram.bytes.size(), 0,
                                        reinterpret_cast<const sockaddr*>(&receiver), sizeof receiver);
            if (sent < 0 && errno != ECONNREFUSED) return errno; // nobody listens yet
        }
    }
    close(descriptor);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    sockaddr_in receiver = {};
    receiver.sin_family = AF_INET;
    const long port = argc > 3 ? std::strtol(argv[3], nullptr, 10) : 0;
    const long passes = argc > 4 ? std::strtol(argv[4], nullptr, 10) : 1'000'000'000;
    if (port < 1 || port > 65535 || passes < 1 || inet_pton(AF_INET, argv[2], &receiver.sin_addr) != 1)
    {
        std::fputs("usage: softdec_sender FILE.ts ADDRESS PORT [PASSES]\n", stderr);
        return 2;
    }
    receiver.sin_port = htons(static_cast<std::uint16_t>(port));
    std::ifstream file(argv[1], std::ios::binary);
    const Bytes stream{std::istreambuf_iterator<char>(file), {}};
    if (!file || stream.empty() || stream.size() % 188 != 0 || stream[0] != 0x47)
    {
        std::fprintf(stderr, "softdec_sender: %s: expected a transport stream in whole packets\n", argv[1]);
        return 2;
    }
    try
    {
        if (const int error = send_all(stream, receiver, passes); error != 0)
        {
            std::fprintf(stderr, "softdec_sender: %s port %ld: %s\n", argv[2], port, std::strerror(error));
            return 1;
        }
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "softdec_sender: %s: %s\n", argv[1], error.what());
        return 2;
    }
    return 0;
}
