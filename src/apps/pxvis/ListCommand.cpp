#include "apps/pxvis/ListCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/FontList.h"
#include "apps/pxvis/JsonText.h"
#include "engine2d/CComponentManager.h"
#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisLayerPiece.h"
#include "foundation/OQDataRoots.h"

#include <algorithm>
#include <ostream>
#include <vector>

namespace pxvis {

namespace {

constexpr const OQChar* scriptFolder = u"Visualizations/Vis Studio/";

const char* FormName(CVisRowForm form)
{
    switch (form) {
    case CVisRowForm::Text:
        return "text";
    case CVisRowForm::Integer:
        return "whole number";
    case CVisRowForm::Choice:
        return "choice";
    case CVisRowForm::Float:
        return "number";
    case CVisRowForm::Rectangle:
        return "rectangle";
    case CVisRowForm::Point:
        return "point";
    case CVisRowForm::Color:
        return "colour";
    case CVisRowForm::Gradient:
        return "gradient";
    case CVisRowForm::Font:
        return "font";
    case CVisRowForm::Equation:
        return "equation";
    case CVisRowForm::EquationList:
        return "equations";
    case CVisRowForm::EquationStages:
        return "equations in stages";
    }
    return "";
}

struct Row
{
    std::string name;
    std::string form;
    std::string standard;
    const CVisPresetMap* map; // null: no presets
};

// A kind of piece that scripts are made of.
struct Kind
{
    std::string name;
    std::string guid; // empty for the layer
    std::string category;
    std::unique_ptr<CVisLayerPiece> piece; // whose maps the rows point at
    std::vector<Row> rows;
    bool complete = false; // false: it has rows that it can't tell
};

void ReadRows(Kind& kind)
{
    CVisRowInfoList infos;
    CVisPropertyList values;
    kind.complete = kind.piece->DescribeRows(infos) == 0;
    kind.piece->SaveProperties(values);
    for (const CVisRowInfo& info : infos) {
        const auto value = std::find_if(values.begin(), values.end(),
            [&](const CVisPropertyRow& row) { return row.Name == info.name; });
        kind.rows.push_back({ OQString(info.name).ToUtf8(), FormName(info.form),
            value != values.end() ? value->Value.ToUtf8() : std::string(), info.map });
    }
}

std::vector<Kind> Kinds()
{
    CComponentManager manager;
    manager.Fill();
    std::vector<Kind> kinds;
    kinds.push_back({ "Layer", "", "layer", std::make_unique<CVisLayerPiece>(nullptr), {}, false });
    kinds.back().piece->MakeLayer();
    VISUALIZATION_COMPONENT_INFO_EX info;
    for (int32_t i = 0; CComponentManager::GetInfo(i, info) == 0; ++i) {
        kinds.push_back({ info.name, info.guid, info.category == 0 ? "rework" : "paint",
            std::make_unique<CVisLayerPiece>(nullptr), {}, false });
        kinds.back().piece->MakeComponent(manager.MakeComponent(i));
    }
    for (Kind& kind : kinds)
        ReadRows(kind);
    return kinds;
}

std::string Padded(std::string text, size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// In a table a "|" ends the cell, also between backquotes.
std::string MarkdownCode(const std::string& text)
{
    if (text.empty())
        return "";
    std::string code = "`";
    for (const char character : PrintableLine(text)) {
        if (character == '|')
            code += '\\';
        code += character;
    }
    return code + '`';
}

void PrintNames(
    const std::vector<std::string>& names, const char* title, ListForm form, std::ostream& output)
{
    if (form == ListForm::Markdown)
        output << "# " << title << "\n\n";
    for (const std::string& name : names) {
        if (form == ListForm::Json)
            output << "{\"name\":" << JsonText(name) << "}\n";
        else
            output << (form == ListForm::Markdown ? "- " : "") << PrintableLine(name) << '\n';
    }
}

void PrintScripts(ListForm form, std::ostream& output)
{
    constexpr int32_t ending = 4; // ".pxv"
    std::vector<std::string> names;
    for (const OQDataFile& file : OQDataRoots::Get().List(scriptFolder, u"*.pxv")) {
        const OQString name = file.relative.Left(file.relative.GetLength() - ending);
        names.push_back(name.ToUtf8());
        if (form == ListForm::Json)
            output << "{\"name\":" << JsonText(name.ToUtf8())
                   << ",\"path\":" << JsonText(file.path.ToUtf8()) << "}\n";
    }
    if (form != ListForm::Json)
        PrintNames(names, "Scripts", form, output);
}

void PrintComponent(const Kind& kind, ListForm form, std::ostream& output)
{
    if (form == ListForm::Json) {
        output << "{\"name\":" << JsonText(kind.name)
               << ",\"guid\":" << (kind.guid.empty() ? "null" : JsonText(kind.guid))
               << ",\"category\":" << JsonText(kind.category) << ",\"rows\":[";
        const char* separator = "";
        for (const Row& row : kind.rows) {
            output << std::exchange(separator, ",") << "{\"name\":" << JsonText(row.name)
                   << ",\"form\":" << JsonText(row.form)
                   << ",\"default\":" << JsonText(row.standard)
                   << ",\"presets\":" << (row.map ? row.map->GetCount() : 0) << '}';
        }
        output << "]}\n";
        return;
    }
    if (form == ListForm::Markdown) {
        output << "## " << kind.name << "\n\n";
        if (!kind.guid.empty())
            output << "GUID " << MarkdownCode(kind.guid) << ", "
                   << (kind.category == "paint" ? "paints" : "reworks the picture") << ".\n\n";
        output << "| row | form | default | presets |\n|---|---|---|---|\n";
    } else {
        output << kind.name << (kind.guid.empty() ? "" : "  ") << kind.guid << '\n';
    }
    for (const Row& row : kind.rows) {
        if (form == ListForm::Markdown)
            output << "| " << MarkdownCode(row.name) << " | " << row.form << " | "
                   << MarkdownCode(row.standard) << " | "
                   << (row.map ? std::to_string(row.map->GetCount()) : "") << " |\n";
        else
            output << "  " << Padded(row.name, 22) << ' ' << Padded(row.form, 12) << ' '
                   << PrintableLine(row.standard) << '\n';
    }
    if (!kind.complete)
        output << (form == ListForm::Markdown ? "\nIts other rows can't be told yet.\n"
                                              : "  (its other rows can't be told yet)\n");
    output << '\n';
}

void PrintPresets(const Kind& kind, const Row& row, ListForm form, std::ostream& output)
{
    if (form == ListForm::Markdown)
        output << "## " << kind.name << ": " << row.name << "\n\n| preset | value |\n|---|---|\n";
    else if (form == ListForm::Lines)
        output << kind.name << " \"" << row.name << "\"\n";
    for (const auto& preset : *row.map) {
        const std::string name = preset.key.ToUtf8();
        const std::string value = preset.value.ToUtf8();
        if (form == ListForm::Json)
            output << "{\"component\":" << JsonText(kind.name) << ",\"row\":" << JsonText(row.name)
                   << ",\"name\":" << JsonText(name) << ",\"value\":" << JsonText(value) << "}\n";
        else if (form == ListForm::Markdown)
            output << "| " << name << " | " << MarkdownCode(value) << " |\n";
        else
            output << "  " << Padded(name, 22) << ' ' << value << '\n';
    }
    if (form != ListForm::Json)
        output << '\n';
}

}

int RunList(const ListOptions& options, std::ostream& output, std::ostream& errors)
{
    if (options.what == "scripts") {
        PrintScripts(options.form, output);
    } else if (options.what == "fonts") {
        OQStringArray fonts;
        if (!ListFonts(fonts))
            return PrintError(errors, "the image module, which draws texts, is missing");
        std::vector<std::string> names;
        for (const OQString& font : fonts)
            names.push_back(font.ToUtf8());
        PrintNames(names, "Fonts", options.form, output);
    } else {
        const bool components = options.what == "components";
        if (options.form == ListForm::Markdown)
            output << (components ? "# Components\n\n" : "# Presets\n\n");
        for (const Kind& kind : Kinds()) {
            if (components)
                PrintComponent(kind, options.form, output);
            for (const Row& row : kind.rows) {
                // For people the row that all have is told once.
                const bool again = row.name == "OnEquation" && !kind.guid.empty();
                if (!components && row.map && (!again || options.form == ListForm::Json))
                    PrintPresets(kind, row, options.form, output);
            }
        }
    }
    return output.flush() ? 0 : PrintError(errors, "the list can't be written");
}

}
