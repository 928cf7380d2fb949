#include "os/NetworkAddress.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <netinet/in.h>
#include <sys/socket.h>

namespace pxvis::os {

namespace {

struct Network
{
    uint32_t start;
    int bits;
};

constexpr Network kNotPublic[] = {
    { 0x00000000, 8 }, // this machine
    { 0x0A000000, 8 }, // private, as are 172.16 and 192.168
    { 0x64400000, 10 }, // a provider's own
    { 0x7F000000, 8 }, // loopback
    { 0xA9FE0000, 16 }, // one link
    { 0xAC100000, 12 }, { 0xC0A80000, 16 }, { 0xE0000000, 3 }, // many at once, and reserved
};

bool IsPublic(uint32_t address)
{
    return std::ranges::none_of(kNotPublic, [address](const Network& network) {
        return (address ^ network.start) >> (32 - network.bits) == 0;
    });
}

bool IsPublic(const uint8_t (&bytes)[16])
{
    constexpr uint8_t mapped[12] = { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF };
    constexpr uint8_t translated[12] = { 0, 0x64, 0xFF, 0x9B };
    if (std::equal(std::begin(mapped), std::end(mapped), bytes)
        || std::equal(std::begin(translated), std::end(translated), bytes))
        return IsPublic(uint32_t { bytes[12] } << 24 | uint32_t { bytes[13] } << 16
            | uint32_t { bytes[14] } << 8 | bytes[15]);
    const bool isOwn = std::all_of(bytes, bytes + 15, [](uint8_t byte) { return byte == 0; });
    const bool isLink = bytes[0] == 0xFE && (bytes[1] & 0x80) != 0; // of a link, once of a site
    const bool isPrivate = (bytes[0] & 0xFE) == 0xFC;
    return !isOwn && !isLink && !isPrivate && bytes[0] != 0xFF;
}

}

bool IsPublicAddress(const sockaddr& address)
{
    if (address.sa_family == AF_INET) {
        sockaddr_in place {};
        std::memcpy(&place, &address, sizeof place);
        return IsPublic(ntohl(place.sin_addr.s_addr));
    }
    if (address.sa_family == AF_INET6) {
        sockaddr_in6 place {};
        std::memcpy(&place, &address, sizeof place);
        return IsPublic(place.sin6_addr.s6_addr);
    }
    return false;
}

}
