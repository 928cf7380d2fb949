#include "foundation/OQLog.h"

#include "foundation/OQSiblingModules.h"

namespace {

IOQLog* GetLog()
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    return tools ? tools->GetLog(1) : nullptr;
}

}

void OQLog(OQLogLevel level, const OQChar* scope, const OQChar* text,
    std::initializer_list<OQFormatArgument> arguments) noexcept
{
    if (IOQLog* log = GetLog())
        log->Write(level, scope, text, arguments.begin(), static_cast<int32_t>(arguments.size()));
}

bool OQLogIsOn(OQLogLevel level) noexcept
{
    const IOQLog* log = GetLog();
    return log && log->IsOn(level);
}
