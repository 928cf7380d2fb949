#pragma once

#include <string>
#include <vector>

// When a video file flashes and clicks, as a player shows and plays it: each time something bright,
// or loud, comes after half a second of darkness, or silence. However long the file is, little of
// it is in memory.
struct VideoEvents
{
    std::string fault;
    size_t pictures = 0;
    std::vector<double> flashes; // s
    std::vector<double> clicks; // s
    double soundEnd = 0; // s

    explicit VideoEvents(const std::string& path);
};
