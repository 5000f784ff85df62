/**
 * @file socket_source.h
 * A transport stream that arrives at UDP sockets, with the arrival times that the kernel gives.
 */
#ifndef SOFTDEC_INPUT_SOCKET_SOURCE_H
#define SOFTDEC_INPUT_SOCKET_SOURCE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "input/source.h"

namespace softdec
{

class SocketSource : public Source
{
public:
    /**
     * Opens the sockets.
     * @param address [GROUP@]ADDRESS:PORT: port and local address to receive on; a multicast address, or a GROUP in front of
     *                the address of the interface, is joined. IPv6 addresses stand in brackets.
     * @param with_fec receive FEC on the two even ports that follow as well
     * @throw InputError if the address is none or a socket cannot be opened
     */
    SocketSource(const std::string& address, bool with_fec);
    ~SocketSource() override;
    SocketSource(const SocketSource&) = delete;
    SocketSource& operator=(const SocketSource&) = delete;

    Result next(Datagram& datagram) override;
    bool has_arrivals() const override { return true; }

private:
    static constexpr std::size_t batch = 32;
    static constexpr std::size_t largest_datagram = 65536;

    struct Socket
    {
        int descriptor;
        Channel channel;
        std::uint32_t overflows = 0; // as the kernel counts them, from 0
    };
    void receive(Socket& socket);

    std::vector<Socket> sockets_;
    std::vector<std::uint8_t> buffers_;
    std::vector<Datagram> waiting_; // in buffers_, in the order of their arrival
    std::size_t taken_ = 0;
};

} // namespace softdec

#endif
