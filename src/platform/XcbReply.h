#pragma once

#include <cstdlib>
#include <memory>

namespace pxvis {

struct XcbFree
{
    void operator()(void* reply) const { std::free(reply); }
};

// A reply, an error or an event, which its receiver frees.
template <class T>
using XcbReply = std::unique_ptr<T, XcbFree>;

}
