#pragma once

#include <string>
#include <vector>

struct ChildResult
{
    int status = -1; // exit status; -1 for the end by a signal
    std::string output;
    std::string errors;
    double processorSeconds = 0;
    long mostKilobytes = 0; // of memory at a time
};

// Runs a program with `input` as its standard input to the end. One that takes a minute of the
// processor is ended.
ChildResult RunChild(const std::vector<std::string>& command, const std::string& input);
