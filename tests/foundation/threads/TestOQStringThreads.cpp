#include "foundation/OQString.h"

#include <doctest/doctest.h>

#include <thread>
#include <vector>

TEST_CASE("Strings that share a text may be used by several threads")
{
    const OQString shared = u"shared between threads";
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([mine = shared] {
            for (int i = 0; i < 2000; ++i) {
                OQString copy = mine;
                const OQString second = copy;
                copy += u"!";
                copy = second;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    CHECK(shared == u"shared between threads");
}
