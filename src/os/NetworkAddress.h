#pragma once

struct sockaddr;

namespace pxvis::os {

// Can it be reached from everywhere? Not what leads to this machine or its own network alone, to
// many at once, or is of another kind than IPv4 and IPv6.
bool IsPublicAddress(const sockaddr& address);

}
