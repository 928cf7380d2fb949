#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

// Nothing that is tested reads or writes what is the user's or the machine's, nor what another
// test's process does, since many run at a time. The cache alone is shared: an empty one would have
// fontconfig look at all fonts in each process. What a killed process leaves lies in the build.
int main(int argc, char** argv)
{
    std::filesystem::create_directories(PXVIS_BINARY_DIR "/home");
    std::string home = PXVIS_BINARY_DIR "/home/XXXXXX";
    if (!mkdtemp(home.data()))
        return 1;
    setenv("XDG_CACHE_HOME", PXVIS_BINARY_DIR "/home/cache", 1);
    setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    setenv("XDG_STATE_HOME", (home + "/state").c_str(), 1);
    setenv("PXVIS_MACHINE_FOLDER", (home + "/machine").c_str(), 1);
    const int status = doctest::Context(argc, argv).run();
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return status;
}
