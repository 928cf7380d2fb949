#include "apps/pxvis/CheckCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/FlashCheck.h"
#include "apps/pxvis/JsonText.h"
#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/ScriptText.h"
#include "engine2d/CScriptCheck.h"
#include "engine2d/VisFonts.h"

#include <ostream>

namespace pxvis {

namespace {

std::string JsonOrNull(const OQString& text)
{
    return text.IsEmpty() ? "null" : JsonText(text.ToUtf8());
}

std::string JsonLine(const std::string& file, const CScriptFinding& finding)
{
    return "{\"file\":" + JsonText(file) + ",\"line\":" + std::to_string(finding.line)
        + ",\"column\":" + std::to_string(finding.column)
        + ",\"component\":" + JsonOrNull(finding.component) + ",\"row\":" + JsonOrNull(finding.row)
        + ",\"position\":" + (finding.position > 0 ? std::to_string(finding.position) : "null")
        + ",\"message\":" + JsonText(finding.message.ToUtf8()) + "}\n";
}

std::string HumanLine(const std::string& file, const CScriptFinding& finding)
{
    std::string line = file + ':' + std::to_string(finding.line) + ':'
        + std::to_string(finding.column) + ": " + finding.component.ToUtf8();
    if (!finding.row.IsEmpty())
        line += " \"" + finding.row.ToUtf8() + '"';
    if (!finding.component.IsEmpty())
        line += ": ";
    if (finding.position > 0)
        line += "character " + std::to_string(finding.position) + ": ";
    return PrintableLine(line + finding.message.ToUtf8()) + '\n';
}

}

int RunCheck(const CheckOptions& options, std::ostream& output, std::ostream& errors)
{
    if (options.flash)
        return RunFlashCheck(options, output, errors);
    OQStringArray fonts;
    CScriptCheck check(VisListFonts(fonts) ? &fonts : nullptr);
    int status = 0;
    for (const std::string& name : options.scripts) {
        std::string error;
        const auto files = FindScripts(name, error);
        if (files.empty())
            status = PrintError(errors, error);
        for (const std::string& file : files) {
            OQString text;
            if (!ReadScriptText(file, text, error)) {
                status = PrintError(errors, error);
                continue;
            }
            for (const CScriptFinding& finding : check.Check(text)) {
                output << (options.json ? JsonLine(file, finding) : HumanLine(file, finding));
                status = 1;
            }
        }
    }
    if (!output.flush())
        return PrintError(errors, "the findings can't be written");
    return status;
}

}
