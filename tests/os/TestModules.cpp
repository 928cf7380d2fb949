#include "TestFolder.h"
#include "os/DynamicLibrary.h"
#include "os/ModulePath.h"

#include <doctest/doctest.h>

#include <dlfcn.h>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using pxvis::os::DynamicLibrary;

namespace {

const fs::path kModule = fs::path(PXVIS_BINARY_DIR) / "bin" / "ModuleUnderTest.so";

// A folder of its own, and back to the working folder of before.
struct Sandbox
{
    fs::path before = fs::current_path();
    TestFolder own;
    fs::path folder = fs::canonical(own.Path(""));

    ~Sandbox() { fs::current_path(before); }
};

using PathFunction = const char*();

std::string PathOfCodeIn(void* symbol)
{
    return symbol ? reinterpret_cast<PathFunction*>(symbol)() : "";
}

}

TEST_CASE("A program knows its own file whatever it was called by")
{
    CHECK(pxvis::os::ModulePath() == fs::canonical("/proc/self/exe").string());
    CHECK(pxvis::os::ModuleFolder() == (fs::canonical(PXVIS_BINARY_DIR) / "bin").string());
}

TEST_CASE("Code in a library knows the library's file and not the program's")
{
    DynamicLibrary library;
    REQUIRE(library.Open(kModule.string()));
    CHECK(PathOfCodeIn(library.Symbol("OwnModulePath")) == fs::canonical(kModule).string());

    CHECK(library.Symbol("NoSuchSymbol") == nullptr);
    CHECK(library.Error().find("NoSuchSymbol") != std::string::npos);
}

TEST_CASE("A library loaded by a relative name and through a link knows its place after a chdir")
{
    const Sandbox sandbox;
    fs::copy_file(kModule, sandbox.folder / "Copy.so");
    fs::create_directory(sandbox.folder / "links");
    fs::create_symlink(sandbox.folder / "Copy.so", sandbox.folder / "links" / "Link.so");
    fs::current_path(sandbox.folder);
    void* handle = dlopen("links/Link.so", RTLD_NOW | RTLD_LOCAL);
    REQUIRE(handle);
    fs::current_path("/");
    CHECK(PathOfCodeIn(dlsym(handle, "OwnModulePath")) == (sandbox.folder / "Copy.so").string());
    dlclose(handle);
}

TEST_CASE("Only absolute paths are loaded and a failure tells why")
{
    DynamicLibrary library;
    CHECK_FALSE(library.Open("libm.so.6"));
    CHECK_FALSE(library.Open(""));
    CHECK_FALSE(library.Error().empty());
    CHECK_FALSE(library.Open("/nonexistent/Module.so"));
    CHECK(library.Error().find("/nonexistent/Module.so") != std::string::npos);
    CHECK(library.Symbol("OwnModulePath") == nullptr);

    // A failed load leaves nothing of the one before.
    REQUIRE(library.Open(kModule.string()));
    CHECK_FALSE(library.Open("/nonexistent/Module.so"));
    CHECK(library.Symbol("OwnModulePath") == nullptr);
}
