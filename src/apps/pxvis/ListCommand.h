#pragma once

#include <iosfwd>
#include <string>

namespace pxvis {

enum class ListForm
{
    Lines, // for a terminal
    Markdown,
    Json // an object a line
};

struct ListOptions
{
    std::string what; // "scripts", "components", "presets" or "fonts"
    ListForm form = ListForm::Lines;
};

// The command "list". Gives the exit status.
int RunList(const ListOptions& options, std::ostream& output, std::ostream& errors);

}
