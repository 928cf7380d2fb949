#include "toolkit/OQWndPtr.h"

#include "WindowTesting.h"

#include <memory>

namespace {

struct Button final : OQBasicWnd
{
    using OQBasicWnd::Call;
};

struct Owner
{
    int called = 0;
    std::unique_ptr<Button> button = std::make_unique<Button>();

    void OnChange() { ++called; }

    void OnClose() { button.reset(); }
};

}

TEST_CASE("an owner's callbacks run at their event, and may delete the control")
{
    Owner owner;
    Owner other;
    owner.button->AddCallback(&owner, 70, &Owner::OnChange);
    owner.button->AddCallback(&owner, 70, &Owner::OnChange); // takes the place of the first
    owner.button->AddCallback(&other, 70, &Owner::OnChange);
    owner.button->AddCallback(&owner, 71, &Owner::OnClose);
    CHECK(owner.button->Call(70));
    CHECK(owner.called == 1);
    CHECK(other.called == 1);
    owner.button->RemoveCallbacks(&other);
    CHECK(owner.button->Call(70));
    CHECK(other.called == 1);
    CHECK_FALSE(owner.button->Call(71));
    CHECK_FALSE(owner.button);
}

TEST_CASE("a window pointer owns a wrapper round a window that the toolkit didn't make")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host(120, 90);
        REQUIRE(OQToolkit::Get().EnsureApplication());
        OQWndPtr pointer { uintptr_t(host.GetWindow()) };
        OQWndPtr copy = pointer;
        pointer.Clear();
        REQUIRE(copy);
        CHECK(copy->GetKind() == OQWndKindWrapper);
        CHECK(copy->GetRect() == OQRect { 100, 50, 220, 140 });
        auto& wrapper = static_cast<OQBasicWnd&>(*copy.Get());
        CHECK(wrapper.GetHandle() == host.GetWindow());
        CHECK(wrapper.GetClientSize() == OQSize { 120, 90 });
        CHECK(wrapper.IsVisible());
        CHECK_FALSE(wrapper.CreateChild(host.GetWindow(), u"None"));
        wrapper.Destroy(); // it isn't ours
        host.DestroyWindow(host.GetWindow());
        CHECK_FALSE(wrapper.IsVisible());
        CHECK(copy->GetSize() == OQSize {});
        CHECK_FALSE(OQWndPtr(uintptr_t(0)));
    });
}

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
