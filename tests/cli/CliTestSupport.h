#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tools/mibrel-cli/MibrelCli.h"

namespace mibrel::cli {

struct CliResult {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs the command line in this process, as the program would with these arguments.
inline CliResult run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "mibrel-cli");
    std::vector<const char*> argv;
    for (const auto& argument : arguments) argv.push_back(argument.c_str());
    std::ostringstream out;
    std::ostringstream err;
    const int status = runMibrelCli(static_cast<int>(argv.size()), argv.data(), out, err);
    return {status, out.str(), err.str()};
}

} // namespace mibrel::cli
