#include "foundation/OQMainThreadWindow.h"

#include "foundation/IOQTools.h"

namespace {

constexpr uint32_t deliverMessage = 0x87D1;

}

OQMainThreadWindow::OQMainThreadWindow(OQSiblingModules& modules)
    : m_modules(modules)
{
    if (IOQMessageQueues* queues = IOQMessageQueues::Get())
        m_window = queues->MakeWindow(*this);
}

bool OQMainThreadWindow::WakeMainThread()
{
    return m_window && m_window->Post(deliverMessage);
}

void OQMainThreadWindow::OnMessage(uint32_t message)
{
    IOQTools* tools = message == deliverMessage ? m_modules.LoadedTools() : nullptr;
    if (IOQMainThreadMessages* messages = tools ? tools->GetMainThreadMessages(1) : nullptr)
        messages->DeliverPending();
}
