#include "foundation/OQSharedMemory.h"

#include <doctest/doctest.h>

#include <thread>
#include <vector>

TEST_CASE("Threads that ask for the process's folders at once get the same ones")
{
    constexpr int threads = 4;
    for (int round = 0; round < 20; ++round) {
        OQSharedMemory::Get().Forget();
        std::vector<OQProcessFolders> got(threads);
        {
            std::vector<std::jthread> running;
            for (OQProcessFolders& folders : got)
                running.emplace_back([&] { folders = OQProcessFolders::Get(); });
        }
        for (const OQProcessFolders& folders : got) {
            CHECK_FALSE(folders.module.IsEmpty());
            CHECK(folders.module == got.front().module);
            CHECK(folders.data == got.front().data);
        }
    }
}
