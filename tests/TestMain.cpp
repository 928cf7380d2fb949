#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

#include <cstdlib>

// Nothing that is tested reads or writes what is the user's or the machine's.
int main(int argc, char** argv)
{
    setenv("XDG_CACHE_HOME", PXVIS_BINARY_DIR "/home/cache", 1);
    setenv("XDG_CONFIG_HOME", PXVIS_BINARY_DIR "/home/config", 1);
    setenv("XDG_DATA_HOME", PXVIS_BINARY_DIR "/home/data", 1);
    setenv("XDG_STATE_HOME", PXVIS_BINARY_DIR "/home/state", 1);
    setenv("PXVIS_MACHINE_FOLDER", PXVIS_BINARY_DIR "/home/machine", 1);
    return doctest::Context(argc, argv).run();
}
