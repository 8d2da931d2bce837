#pragma once

#include <string>
#include <vector>

namespace pallix::test {

struct ToolResult {
    int status = -1;    // exit status; -1 when the tool did not exit normally
    std::string output; // standard output
    std::string errors; // standard error
};

// Runs the built pallix tool with the arguments (no shell involved) and collects its output.
// `environment` entries of the form NAME=VALUE are added to the tool's environment.
ToolResult runTool(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {});

// Runs any program the same way.
ToolResult runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment = {});

} // namespace pallix::test
