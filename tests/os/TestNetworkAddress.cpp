#include "os/NetworkAddress.h"

#include <doctest/doctest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <string>

namespace {

bool IsPublic(const std::string& text)
{
    sockaddr_in6 six {};
    six.sin6_family = AF_INET6;
    if (inet_pton(AF_INET6, text.c_str(), &six.sin6_addr) == 1)
        return pxvis::os::IsPublicAddress(reinterpret_cast<const sockaddr&>(six));
    sockaddr_in four {};
    four.sin_family = AF_INET;
    REQUIRE(inet_pton(AF_INET, text.c_str(), &four.sin_addr) == 1);
    return pxvis::os::IsPublicAddress(reinterpret_cast<const sockaddr&>(four));
}

}

TEST_CASE("Addresses of this machine and of its network aren't public, their neighbours are")
{
    for (const char* text :
        { "0.0.0.0", "10.0.0.1", "10.255.255.255", "100.64.0.1", "100.127.255.255", "127.0.0.1",
            "127.255.0.1", "169.254.169.254", "172.16.0.0", "172.31.255.255", "192.168.0.1",
            "224.0.0.1", "255.255.255.255", "::", "::1", "fe80::1", "fec0::1", "fc00::1", "fd12::1",
            "ff02::1", "::ffff:127.0.0.1", "::ffff:10.1.2.3", "64:ff9b::192.168.1.1" })
        CHECK_FALSE_MESSAGE(IsPublic(text), text);
    for (const char* text :
        { "1.1.1.1", "9.255.255.255", "11.0.0.0", "100.63.255.255", "100.128.0.0", "126.0.0.1",
            "128.0.0.1", "169.253.0.1", "172.15.0.1", "172.32.0.0", "192.167.0.1",
            "223.255.255.255", "2001:db8::1", "2a00::1", "::ffff:8.8.8.8", "64:ff9b::1.1.1.1" })
        CHECK_MESSAGE(IsPublic(text), text);
    const sockaddr local { AF_UNIX, {} };
    CHECK_FALSE(pxvis::os::IsPublicAddress(local));
}
