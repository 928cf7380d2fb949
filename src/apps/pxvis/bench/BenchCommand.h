#pragma once

#include <iosfwd>
#include <string>

namespace pxvis {

struct BenchOptions
{
    std::string filter; // part of the names of what is measured; empty: all
    bool json = false; // an object a line
};

// The command "bench". Gives the exit status: 1 if there is nothing of such a name.
int RunBench(const BenchOptions& options, std::ostream& output, std::ostream& errors);

}
