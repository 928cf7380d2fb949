#include "apps/pxvis/ListCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/JsonText.h"
#include "engine2d/CComponentManager.h"
#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisLayerPiece.h"
#include "engine2d/VisFonts.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQDataRoots.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <span>
#include <vector>

namespace pxvis {

namespace {

const char* FormName(CVisRowForm form)
{
    switch (form) {
    case CVisRowForm::Text:
        return "text";
    case CVisRowForm::Pages:
        return "pages";
    case CVisRowForm::Integer:
        return "whole number";
    case CVisRowForm::Choice:
        return "choice";
    case CVisRowForm::Float:
        return "number";
    case CVisRowForm::Rectangle:
    case CVisRowForm::Area:
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
    case CVisRowForm::ColorList:
        return "seconds and colours";
    case CVisRowForm::PictureList:
        return "pictures";
    case CVisRowForm::EquationStages:
        return "equations in stages";
    }
    return "";
}

// A map of presets that rows of several kinds may have in common.
struct SharedMap
{
    const char* title;
    const CVisPresetMap* map;
};

std::span<const SharedMap> SharedMaps()
{
    static const SharedMap maps[] = {
        { "No, Yes", &NoYesPresets() },
        { "Rectangles", &RectanglePresets() },
        { "On-equations", &OnEquationPresets() },
        { "Gradients", &GradientPresets() },
        { "Gradients and Take Red", &GradientPresetsWithTakeRed() },
    };
    return maps;
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
};

void ReadRows(Kind& kind)
{
    CVisRowInfoList infos;
    CVisPropertyList values;
    kind.piece->DescribeRows(infos);
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
    kinds.push_back({ "Layer", "", "layer", std::make_unique<CVisLayerPiece>(nullptr), {} });
    kinds.back().piece->MakeLayer();
    VISUALIZATION_COMPONENT_INFO_EX info;
    for (int32_t i = 0; CComponentManager::GetInfo(i, info) == 0; ++i) {
        kinds.push_back({ info.name, info.guid, info.category == 0 ? "rework" : "paint",
            std::make_unique<CVisLayerPiece>(nullptr), {} });
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
std::string MarkdownText(const std::string& text)
{
    std::string escaped;
    for (const char character : PrintableLine(text)) {
        if (character == '|')
            escaped += '\\';
        escaped += character;
    }
    return escaped;
}

std::string MarkdownCode(const std::string& text)
{
    return text.empty() ? std::string() : '`' + MarkdownText(text) + '`';
}

void PrintMarkdownPresets(const CVisPresetMap& map, std::ostream& output)
{
    std::map<std::string, std::string> sorted; // as people look them up
    for (const auto& preset : map)
        sorted.emplace(preset.key.ToUtf8(), preset.value.ToUtf8());
    output << "| preset | value |\n|---|---|\n";
    for (const auto& [name, value] : sorted)
        output << "| " << MarkdownText(name) << " | " << MarkdownCode(value) << " |\n";
    output << '\n';
}

// The table of presets that stands with the first row that has the map, unless many kinds share it.
std::string MapTitle(const std::vector<Kind>& kinds, const Kind& kind, const CVisPresetMap* map)
{
    for (const SharedMap& shared : SharedMaps()) {
        if (shared.map == map)
            return shared.title;
    }
    for (const Kind& owner : kinds) {
        for (const Row& row : owner.rows) {
            if (row.map == map)
                return MarkdownCode(row.name) + (&owner == &kind ? "" : " of " + owner.name);
        }
    }
    return {};
}

// The default's text, or, of a long one that is a preset, the preset's name.
std::string MarkdownDefault(const Row& row)
{
    constexpr size_t longest = 120; // bytes
    if (row.map && row.standard.size() > longest) {
        for (const auto& preset : *row.map) {
            if (preset.value.ToUtf8() == row.standard)
                return MarkdownText(preset.key.ToUtf8());
        }
    }
    return MarkdownCode(row.standard);
}

// The section of a kind: its rows, and the presets that no kind before has.
void PrintMarkdown(const std::vector<Kind>& kinds, const Kind& kind, std::ostream& output)
{
    output << "## " << kind.name << "\n\n";
    if (!kind.guid.empty())
        output << "GUID " << MarkdownCode(kind.guid) << ", "
               << (kind.category == "paint" ? "paints" : "reworks the picture") << ".\n\n";
    output << "| row | form | default | presets |\n|---|---|---|---|\n";
    for (const Row& row : kind.rows)
        output << "| " << MarkdownCode(row.name) << " | " << row.form << " | "
               << MarkdownDefault(row) << " | "
               << (row.map ? MapTitle(kinds, kind, row.map) : std::string()) << " |\n";
    output << '\n';
    for (const Row& row : kind.rows) {
        if (row.map && MapTitle(kinds, kind, row.map) == MarkdownCode(row.name)) {
            output << "Presets of " << MarkdownCode(row.name) << ":\n\n";
            PrintMarkdownPresets(*row.map, output);
        }
    }
}

void PrintSharedMaps(std::ostream& output)
{
    output << "## Shared presets\n\n";
    for (const SharedMap& shared : SharedMaps()) {
        output << shared.title << ":\n\n";
        PrintMarkdownPresets(*shared.map, output);
    }
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
    for (const OQDataFile& file : OQDataRoots::Get().List(OQDataRoots::scripts, u"*.pxv")) {
        const OQString name = file.relative.Left(file.relative.GetLength() - ending);
        names.push_back(name.ToUtf8());
        if (form == ListForm::Json)
            output << "{\"name\":" << JsonText(name.ToUtf8())
                   << ",\"path\":" << JsonText(file.path.ToUtf8()) << "}\n";
    }
    if (form != ListForm::Json)
        PrintNames(names, "Scripts", form, output);
}

void PrintComponent(
    const std::vector<Kind>& kinds, const Kind& kind, ListForm form, std::ostream& output)
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
        PrintMarkdown(kinds, kind, output);
        return;
    }
    output << kind.name << (kind.guid.empty() ? "" : "  ") << kind.guid << '\n';
    for (const Row& row : kind.rows)
        output << "  " << Padded(row.name, 22) << ' ' << Padded(row.form, 19) << ' '
               << PrintableLine(row.standard) << '\n';
    output << '\n';
}

void PrintPresets(const Kind& kind, const Row& row, ListForm form, std::ostream& output)
{
    if (form == ListForm::Markdown) {
        output << "## " << kind.name << ": " << row.name << "\n\n";
        PrintMarkdownPresets(*row.map, output);
        return;
    }
    if (form == ListForm::Lines)
        output << kind.name << " \"" << row.name << "\"\n";
    for (const auto& preset : *row.map) {
        const std::string name = preset.key.ToUtf8();
        const std::string value = preset.value.ToUtf8();
        if (form == ListForm::Json)
            output << "{\"component\":" << JsonText(kind.name) << ",\"row\":" << JsonText(row.name)
                   << ",\"name\":" << JsonText(name) << ",\"value\":" << JsonText(value) << "}\n";
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
        if (!VisListFonts(fonts))
            return PrintError(errors, "the image module, which draws texts, is missing");
        std::vector<std::string> names;
        for (const OQString& font : fonts)
            names.push_back(font.ToUtf8());
        PrintNames(names, "Fonts", options.form, output);
    } else {
        const bool components = options.what == "components";
        if (options.form == ListForm::Markdown)
            output << (components ? "# Components\n\n" : "# Presets\n\n");
        const std::vector<Kind> kinds = Kinds();
        for (const Kind& kind : kinds) {
            if (components)
                PrintComponent(kinds, kind, options.form, output);
            for (const Row& row : kind.rows) {
                // For people the row that all have is told once.
                const bool again = row.name == "OnEquation" && !kind.guid.empty();
                if (!components && row.map && (!again || options.form == ListForm::Json))
                    PrintPresets(kind, row, options.form, output);
            }
        }
        if (components && options.form == ListForm::Markdown)
            PrintSharedMaps(output);
    }
    return output.flush() ? 0 : PrintError(errors, "the list can't be written");
}

}
