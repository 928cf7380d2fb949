#pragma once

#include "apps/pxvis/CheckCommand.h"

#include <sstream>
#include <string>

// What the command "check" says and gives.
struct Checked
{
    explicit Checked(const pxvis::CheckOptions& options)
    {
        std::ostringstream output;
        std::ostringstream errors;
        status = pxvis::RunCheck(options, output, errors);
        text = output.str();
        fault = errors.str();
    }

    int status;
    std::string text;
    std::string fault;
};
