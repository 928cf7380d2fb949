#include "toolkit/OQInputFocus.h"

#include "toolkit/OQDisplayConnection.h"
#include "toolkit/OQToolkit.h"

#include <QCoreApplication>
#include <QTimer>

namespace {

constexpr int AgainMilliseconds[] = { 20, 60, 150 };
constexpr uint32_t LastSpecialFocus = 1; // none, or whatever the pointer is in

void GiveAgain(uint32_t window)
{
    if (!OQToolkit::Get().IsUsable())
        return;
    OQDisplayConnection& display = *OQToolkit::Get().GetDisplay();
    const uint32_t focus = display.GetInputFocus();
    if (focus <= LastSpecialFocus || (focus != window && focus == display.FindTopLevel(window)))
        display.SetInputFocus(window);
}

}

void OQGiveInputFocus(uint32_t window)
{
    if (window <= LastSpecialFocus)
        return;
    OQToolkit::Get().GetDisplay()->SetInputFocus(window);
    for (const int delay : AgainMilliseconds)
        QTimer::singleShot(delay, qApp, [window] { GiveAgain(window); });
}
