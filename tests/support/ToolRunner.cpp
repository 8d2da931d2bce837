#include "ToolRunner.h"

#include "TemporaryDirectory.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

extern char** environ;

namespace pallix::test {

ToolResult runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
    TemporaryDirectory capture("pallix-tool");
    const std::string outPath = capture.file("stdout");
    const std::string errPath = capture.file("stderr");

    std::vector<std::string> argv{program};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    std::vector<char*> argPointers;
    for (auto& argument : argv) {
        argPointers.push_back(argument.data());
    }
    argPointers.push_back(nullptr);

    std::vector<std::string> env;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        env.emplace_back(*entry);
    }
    env.insert(env.end(), environment.begin(), environment.end());
    std::vector<char*> envPointers;
    for (auto& entry : env) {
        envPointers.push_back(entry.data());
    }
    envPointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    pid_t pid = 0;
    ToolResult result;
    const int spawned = posix_spawnp(&pid, program.c_str(), &actions, nullptr, argPointers.data(),
                                     envPointers.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        result.errors = std::string("cannot run ") + program + ": " + std::strerror(spawned);
        return result;
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.output = TemporaryDirectory::read(outPath);
    result.errors = TemporaryDirectory::read(errPath);
    return result;
}

ToolResult runTool(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment) {
#ifdef PALLIX_TOOL_PATH
    return runProgram(PALLIX_TOOL_PATH, arguments, environment);
#else
    (void)arguments;
    (void)environment;
    ToolResult result;
    result.errors = "the pallix tool is not part of this build";
    return result;
#endif
}

} // namespace pallix::test
