#include "foundation/OQApp.h"

#include "os/ProcessArguments.h"

namespace {

OQApp* g_app = nullptr;

// The system hands the command line over in pieces already.
OQStringArray ArgumentsOfProcess()
{
    OQStringArray arguments;
    for (const std::string& argument : pxvis::os::ProcessArguments())
        arguments.Add(OQString::FromUtf8(argument));
    return arguments;
}

}

OQApp::OQApp()
{
    g_app = this;
}

OQApp::~OQApp()
{
    if (g_app == this)
        g_app = nullptr;
}

OQApp* OQApp::Get()
{
    return g_app;
}

bool OQApp::ForwardProcessEvent(void* module, uint32_t reason, void* reserved)
{
    return g_app && g_app->OnProcessEvent(module, reason, reserved);
}

bool OQApp::OnProcessEvent(void* module, uint32_t reason, void*)
{
    if (reason == OQProcessAttach && m_attached.fetch_add(1) == 0) {
        m_module = module;
        m_arguments = ArgumentsOfProcess();
        if (!Startup()) {
            Shutdown();
            return false;
        }
    } else if (reason == OQProcessDetach && m_attached.fetch_sub(1) == 1) {
        Shutdown();
    }
    return true;
}

int32_t OQApp::Run(void* instance, void* previous, const OQChar* command)
{
    m_module = instance;
    m_previous = previous;
    m_arguments = SplitCommandLine(command);
    if (Startup())
        m_result = RunFromModule();
    Shutdown();
    return m_result;
}

int32_t OQApp::RunFromModule()
{
    return 0;
}

bool OQApp::Startup()
{
    return true;
}

bool OQApp::Shutdown()
{
    return true;
}

OQStringArray OQApp::SplitCommandLine(const OQString& line)
{
    OQStringArray arguments;
    OQString argument;
    bool quoted = false;
    int backslashes = 0; // right before the character
    for (const OQChar character : line.View()) {
        const bool escaped = backslashes % 2 != 0;
        backslashes = character == u'\\' ? backslashes + 1 : 0;
        const bool isQuote = character == u'"' && !escaped;
        const bool isEnd = isQuote ? quoted : !quoted && character == u' ' && !argument.IsEmpty();
        if (isQuote)
            quoted = !quoted;
        else if (quoted || character != u' ')
            argument += character;
        if (isEnd) {
            arguments.Add(argument);
            argument.Clear();
        }
    }
    if (!argument.IsEmpty())
        arguments.Add(argument);
    return arguments;
}
