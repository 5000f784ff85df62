/* UDP datagrams in the frames that captures have, whatever stands in front of them. */
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/socket.h>
#include <unistd.h>

#include "input/pcap_source.h"
#include "input/udp_frame.h"
#include "streams.h"

namespace softdec_tests
{

namespace
{

const Bytes content = {'c', 'o', 'n', 't', 'e', 'n', 't'};

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/** From port 4000 to port 5004. */
const Bytes udp = Bytes{0x0f, 0xa0, 0x13, 0x8c, 0, 15, 0, 0} + content;

Bytes ipv4(const Bytes& options = {}, std::uint8_t length = 20 + 15)
{
    const auto words = static_cast<std::uint8_t>(0x45 + options.size() / 4);
    return Bytes{words, 0, 0, static_cast<std::uint8_t>(length == 0 ? 0 : length + options.size()), 0, 1, 0x40, 0, 64, 17, 0, 0} +
           Bytes{192, 0, 2, 1, 192, 0, 2, 2} + options + udp;
}

/** @param first next header of the fixed one @param extensions that stand before the datagram */
Bytes ipv6(std::uint8_t first = 17, const Bytes& extensions = {})
{
    Bytes packet = {0x60, 0, 0, 0, 0, static_cast<std::uint8_t>(15 + extensions.size()), first, 64};
    for (const std::uint8_t host : {std::uint8_t{1}, std::uint8_t{2}})
        packet = packet + Bytes{0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, host};
    return packet + extensions + udp;
}

void expect_content(std::span<const std::uint8_t> packet, const char* what)
{
    SCOPED_TRACE(what);
    const auto frame = softdec::udp_in_ip(packet);
    ASSERT_TRUE(frame);
    EXPECT_TRUE(frame->whole);
    EXPECT_EQ(Bytes(frame->payload.begin(), frame->payload.end()), content);
    EXPECT_EQ(frame->source.port, 4000);
    EXPECT_EQ(frame->destination.port, 5004);
    const bool six = frame->destination.family == AF_INET6;
    EXPECT_EQ(frame->source.address[six ? 15 : 3], 1);
    EXPECT_EQ(frame->destination.address[six ? 15 : 3], 2);
}

TEST(CapturedFrame, HasItsDatagramBehindAnyHeader)
{
    const Bytes addresses(12, 0xee);
    const auto ethernet = [](const Bytes& frame) { return softdec::ip_in_frame(frame, 12, 14); };
    expect_content(ethernet(addresses + Bytes{8, 0} + ipv4()), "Ethernet");
    expect_content(ethernet(addresses + Bytes{0x86, 0xdd} + ipv6()), "Ethernet, IPv6");
    expect_content(ethernet(addresses + Bytes{0x81, 0, 0, 5, 8, 0} + ipv4()), "one tag");
    expect_content(ethernet(addresses + Bytes{0x88, 0xa8, 0, 5, 0x81, 0, 0, 6, 8, 0} + ipv4()), "two tags");
    expect_content(ethernet(addresses + Bytes{0x91, 0, 0, 5, 0x81, 0, 0, 6, 0x86, 0xdd} + ipv6()), "two tags, as before the standard");
    expect_content(ethernet(addresses + Bytes{8, 0} + ipv4() + Bytes(20, 0)), "padding");

    const Bytes cooked = {0, 0, 0, 1, 0, 6, 1, 2, 3, 4, 5, 6, 0, 0};
    expect_content(softdec::ip_in_frame(cooked + Bytes{8, 0} + ipv4(), 14, 16), "cooked");
    expect_content(softdec::ip_in_frame(cooked + Bytes{0x81, 0, 0, 5, 8, 0} + ipv4(), 14, 16), "cooked, with a tag");
    const Bytes behind_type(18, 0xee);
    expect_content(softdec::ip_in_frame(Bytes{0x86, 0xdd} + behind_type + ipv6(), 0, 20), "cooked, version 2");
    expect_content(softdec::ip_in_frame(Bytes{0x81, 0} + behind_type + Bytes{0, 5, 8, 0} + ipv4(), 0, 20), "cooked, version 2, with a tag");
    EXPECT_TRUE(softdec::ip_in_frame(cooked + Bytes{8, 6} + Bytes(28, 0), 14, 16).empty()) << "ARP";
}

TEST(CapturedFrame, HasItsDatagramBehindOptions)
{
    expect_content(ipv4({0x94, 4, 0, 0}), "router alert");
    expect_content(ipv4({}, 0), "a length that the adapter fills in");
    const Bytes padding = {1, 4, 0, 0, 0, 0}; // PadN (RFC 8200, 4.2)
    expect_content(ipv6(0, Bytes{17, 0} + padding), "hop by hop");
    expect_content(ipv6(60, Bytes{17, 1, 1, 12} + Bytes(12, 0)), "for the destination, of 16 bytes");
    expect_content(ipv6(0, Bytes{43, 0} + padding + Bytes{60, 0, 4, 0, 0, 0, 0, 0, 17, 0} + padding), "three of them");
    EXPECT_FALSE(softdec::udp_in_ip(ipv6(0, {17, 40, 1, 4, 0, 0, 0, 0}))) << "one that is longer than the packet";
    EXPECT_FALSE(softdec::udp_in_ip(ipv6(6))) << "TCP";
}

/** Of the older format, which has 32 bits for seconds, without a sign. */
TEST(CapturedFrame, MayBeOfAnyYear)
{
    const std::uint32_t late = 3'000'000'000;
    Bytes capture = read_stream("rtp-fec.pcap");
    const auto word_at = [&capture](std::size_t at)
    {
        std::uint32_t word = 0;
        std::memcpy(&word, &capture[at], sizeof word);
        return word;
    };
    constexpr std::size_t file_header = 24;
    constexpr std::size_t frame_header = 16;
    ASSERT_EQ(word_at(0) & 0xffff0000U, 0xa1b20000U) << "the capture is of the other byte order";
    const std::uint32_t shift = late - word_at(file_header);
    for (std::size_t at = file_header; at < capture.size(); at += frame_header + word_at(at + 8))
    {
        const std::uint32_t moment = word_at(at) + shift;
        std::memcpy(&capture[at], &moment, sizeof moment);
    }
    const std::string path = testing::TempDir() + "late" + std::to_string(getpid()) + ".pcap";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(capture.data()), static_cast<std::streamsize>(capture.size()));
    softdec::PcapSource source(path);
    std::filesystem::remove(path);
    const auto usual = read_capture("rtp-fec.pcap");
    softdec::Datagram datagram;
    for (const Arrival& arrival : usual)
    {
        ASSERT_EQ(source.next(datagram), softdec::Source::Result::datagram);
        ASSERT_EQ(*datagram.arrival - arrival.moment, shift * softdec::second);
    }
    EXPECT_EQ(usual.front().moment / softdec::second + shift, late);
}

} // namespace

} // namespace softdec_tests
