#include "foundation/OQLoadLibrary.h"

#include "foundation/files/FakeTools.h"
#include "os/ModulePath.h"

#include <doctest/doctest.h>

TEST_CASE("A library takes the place of the one before, and a failure is told where that is wanted")
{
    FakeTools& tools = FakeTools::Fresh();
    const OQString module = OQString::FromUtf8(pxvis::os::ModuleFolder() + "/OQTools.so");
    pxvis::os::DynamicLibrary holder;
    CHECK(OQLoadLibrary(holder, module, OQLoadFromItsFolder));
    CHECK(holder.Symbol("GetOQToolsDLL"));
    CHECK_FALSE(OQLoadLibrary(holder, u"/no/such.so", OQLoadFromItsFolder));
    CHECK_FALSE(holder.IsOpen());
    CHECK(tools.log.empty());

    CHECK(OQLoadLibrary(holder, module, OQLoadPlain));
    CHECK_FALSE(OQLoadLibrary(holder, u"", OQLoadLogFailure));
    CHECK_FALSE(holder.IsOpen());
    CHECK(tools.log.empty());
    CHECK_FALSE(OQLoadLibrary(holder, u"/no/such.so", OQLoadLogFailure));
    REQUIRE(tools.log.size() == 1);
    CHECK(tools.log[0].starts_with("OQLoadLibrary: Loading /no/such.so failed, error: "));
}
