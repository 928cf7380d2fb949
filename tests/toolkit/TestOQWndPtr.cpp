#include "toolkit/OQWndPtr.h"

#include <doctest/doctest.h>

TEST_CASE("a window pointer clears when its window goes")
{
    OQWndPtr empty;
    CHECK_FALSE(empty);
    auto wnd = std::make_unique<OQBasicWnd>();
    OQTypedWndPtr<OQBasicWnd> first(wnd.get());
    OQWndPtr second = first;
    CHECK(first.Get() == wnd.get());
    CHECK(second.Get() == wnd.get());
    first.Clear();
    wnd.reset();
    CHECK_FALSE(first);
    CHECK_FALSE(second);
}
