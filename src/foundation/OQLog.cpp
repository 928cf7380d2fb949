#include "foundation/OQLog.h"

#include "foundation/OQSiblingModules.h"

void OQLog(OQLogLevel level, const OQChar* scope, const OQChar* text,
    std::initializer_list<OQFormatArgument> arguments) noexcept
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    if (IOQLog* log = tools ? tools->GetLog(1) : nullptr)
        log->Write(level, scope, text, arguments.begin(), static_cast<int32_t>(arguments.size()));
}
