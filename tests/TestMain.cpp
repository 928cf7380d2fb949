#define DOCTEST_CONFIG_IMPLEMENT
#include "TestFolder.h"

#include <doctest/doctest.h>

// Nothing that is tested reads or writes what is the user's or the machine's, nor what another
// test's process does, since many run at a time. The cache alone is shared: an empty one would have
// fontconfig look at all fonts in each process.
int main(int argc, char** argv)
{
    const TestFolder home;
    setenv("XDG_CACHE_HOME", PXVIS_BINARY_DIR "/home/cache", 1);
    setenv("XDG_CONFIG_HOME", home.Path("config").c_str(), 1);
    setenv("XDG_DATA_HOME", home.Path("data").c_str(), 1);
    setenv("XDG_STATE_HOME", home.Path("state").c_str(), 1);
    setenv("PXVIS_MACHINE_FOLDER", home.Path("machine").c_str(), 1);
    return doctest::Context(argc, argv).run();
}
