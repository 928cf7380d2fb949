#include "Plugins/Visualization/PluginWindows.h"

#include "foundation/OQMainThreadWindow.h"
#include "foundation/OQSiblingModules.h"
#include "os/StandardError.h"
#include "platform/PollMessageQueues.h"
#include "toolkit/OQQtMessageQueues.h"
#include "toolkit/OQQtWindowServices.h"

#include <atomic>

namespace {

constexpr const OQChar* failureTitle = u"Critical Error";

std::atomic<bool> g_isFailureTold = false;

OQQtWindowServices& Services()
{
    static auto* const services = new OQQtWindowServices;
    return *services;
}

}

void PluginWindows::Prepare()
{
    static auto* const queues = new OQQtMessageQueues(pxvis::PollMessageQueues::Get());
    IOQMessageQueues::Install(queues);
    OQSiblingModules::Get().SetUpTools({ &Services(), nullptr });
}

void PluginWindows::UseThread()
{
    static auto* const window = new OQMainThreadWindow;
    static const bool isHandedOver = [] {
        if (window->IsValid())
            OQSiblingModules::Get().SetUpTools({ &Services(), window });
        return true;
    }();
    static_cast<void>(isHandedOver);
}

bool PluginWindows::HasUntoldFailure()
{
    return !g_isFailureTold && !OQSiblingModules::Get().ToolsFailureText().IsEmpty();
}

void PluginWindows::TellFailure(uintptr_t window)
{
    const OQString text = OQSiblingModules::Get().ToolsFailureText();
    if (text.IsEmpty() || g_isFailureTold.exchange(true))
        return;
    if (window)
        Services().ShowMessageBox(window, failureTitle, text.GetText(), OQMessageBoxError);
    else
        pxvis::os::WriteStandardError((OQString(failureTitle) + u": " + text + u"\n").ToUtf8());
}
