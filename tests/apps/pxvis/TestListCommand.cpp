#include "apps/pxvis/ListCommand.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <sstream>

namespace {

std::string List(const std::string& what, pxvis::ListForm form)
{
    std::ostringstream output;
    std::ostringstream errors;
    CHECK(pxvis::RunList({ what, form }, output, errors) == 0);
    CHECK(errors.str().empty());
    return output.str();
}

bool Holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

}

TEST_CASE("list tells components with their rows, forms and defaults")
{
    using enum pxvis::ListForm;
    const std::string json = List("components", Json);
    CHECK(std::count(json.begin(), json.end(), '\n') == 14); // 13 and the layer
    CHECK(Holds(json,
        "{\"name\":\"DrawFrequency\",\"form\":\"whole number\",\"default\":\"2\",\"presets\":0}"));
    CHECK(Holds(json,
        "{\"name\":\"ClearEachFrame\",\"form\":\"choice\",\"default\":\"0\","
        "\"presets\":2}"));
    CHECK(Holds(List("components", Lines), "\nSpectrum Analyzer  B21F9002-EF2E-4d5b-9D40"));

    // A row names the table of its presets: its own, or one that many rows share.
    const std::string page = List("components", Markdown);
    CHECK(Holds(page, "| `BarWidth` | number | `0.01` | `BarWidth` |\n"));
    CHECK(Holds(page, "| `BarGravity` | whole number | `1024` | `PeakGravity` |\n"));
    CHECK(Holds(page, "\nPresets of `PeakGravity`:\n\n| preset | value |\n|---|---|\n| "));
    CHECK_FALSE(Holds(page, "Presets of `BarGravity`"));
    CHECK(Holds(page, "| `MainRectangle` | rectangle | `0;0;1;1` | Rectangles |\n"));
    CHECK(Holds(page, "\nRectangles:\n\n| preset | value |\n"));
    CHECK(page.find("| Bottom Half |") == page.rfind("| Bottom Half |"));
}

TEST_CASE("list tells presets by component and row")
{
    using enum pxvis::ListForm;
    CHECK(Holds(List("presets", Json),
        "{\"component\":\"Layer\",\"row\":\"OutputMode\",\"name\":\"Add\",\"value\":\"2\"}\n"));
    CHECK(Holds(List("presets", Lines), "\nTransform \"TransformEquation\"\n"));
    CHECK(Holds(List("presets", Markdown), "\n| Beat On | `on=beat` |\n"));
}

TEST_CASE("list tells scripts by the names that render takes, and fonts")
{
    using enum pxvis::ListForm;
    CHECK(Holds(List("scripts", Lines), "Bright/Undertow\n"));
    CHECK(Holds(List("scripts", Json), "{\"name\":\"Bright/Undertow\",\"path\":\"/"));
    CHECK(Holds(List("fonts", Markdown), "\n- "));
}
