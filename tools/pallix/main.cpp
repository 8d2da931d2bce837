// pallix: the command-line companion of libPallixRuntime. Each subsystem of the library adds
// its subcommands; they all go through the library's public interface.

#include "Commands.h"
#include "Directories.h"
#include "Failure.h"
#include "FileNames.h"
#include "Suggestion.h"
#include "ToolOutput.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

const char* const kExitStatuses = "\nExit status: 0 success; 1 not found, rejected, or warnings "
                                  "only; 2 usage error or input that cannot be read.";

// The subcommand that the command line reached: the innermost one that was parsed.
const CLI::App* innermostCommand(const CLI::App& app) {
    const CLI::App* command = &app;
    for (;;) {
        const std::vector<const CLI::App*> parsed =
            command->get_subcommands([](const CLI::App* sub) { return sub->parsed(); });
        if (parsed.empty()) {
            return command;
        }
        command = parsed.front();
    }
}

std::vector<std::string> subcommandNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* sub : command.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(sub->get_name());
    }
    return names;
}

std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* at = &command; at != nullptr; at = at->get_parent()) {
        for (const CLI::Option* option : at->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                names.push_back("--" + name);
            }
        }
    }
    return names;
}

// The words that name a command on the command line ("pallix config show").
std::string commandPath(const CLI::App& command) {
    std::string path;
    for (const CLI::App* at = &command; at != nullptr; at = at->get_parent()) {
        path = at->get_name() + (path.empty() ? "" : " " + path);
    }
    return path;
}

// How messages name a command: "config show: ", or nothing for the tool itself.
std::string commandPrefix(const CLI::App& command) {
    const std::string path = commandPath(command);
    const auto space = path.find(' ');
    return space == std::string::npos ? std::string() : path.substr(space + 1) + ": ";
}

// CLI11 names what it did not expect after "not expected: "; the first word is the one to
// correct.
std::string firstUnexpected(const std::string& message) {
    const auto colon = message.find("expected: ");
    if (colon == std::string::npos) {
        return std::string();
    }
    const std::string rest = message.substr(colon + 10);
    return rest.substr(0, rest.find(' '));
}

// The first word on the command line after the command that was reached, skipping options and
// their values: what a group that requires an action was given instead of one.
std::string firstWordAfter(const CLI::App& command, const std::vector<std::string>& arguments) {
    std::vector<std::string> path;
    for (const CLI::App* at = &command; at->get_parent() != nullptr; at = at->get_parent()) {
        path.insert(path.begin(), at->get_name());
    }
    std::size_t matched = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument.rfind("-", 0) == 0) {
            const CLI::Option* option = nullptr;
            for (const CLI::App* at = &command; at != nullptr && option == nullptr;
                 at = at->get_parent()) {
                option = at->get_option_no_throw(argument.substr(0, argument.find('=')));
            }
            if (option != nullptr && option->get_type_size() != 0 &&
                argument.find('=') == std::string::npos) {
                ++i;
            }
        } else if (matched < path.size()) {
            matched += argument == path[matched] ? 1 : 0;
        } else {
            return argument;
        }
    }
    return std::string();
}

// A usage error in the words of CLI11, with a suggestion where a word was mistyped and a
// pointer to the help of the command that was reached.
int reportUsageError(const CLI::App& app, const CLI::ParseError& error,
                     const std::vector<std::string>& arguments) {
    const CLI::App& command = *innermostCommand(app);
    std::string message = error.what();
    std::string word = firstUnexpected(message);
    // CLI11 asks for an action before it names an unexpected word: name the mistyped action,
    // or the actions to choose from when none was given.
    const std::vector<std::string> actions = subcommandNames(command);
    if (word.empty() && error.get_name() == "RequiredError" && !actions.empty()) {
        word = firstWordAfter(command, arguments);
        if (word.empty()) {
            message = commandPrefix(command) + "an action is required (" +
                      pallix::tool::joined(actions) + ")";
        }
    }
    if (!word.empty()) {
        if (word.rfind("-", 0) == 0) {
            message =
                commandPrefix(command) + "unknown option '" + word + "'" +
                pallix::tool::didYouMean(word.substr(0, word.find('=')), optionNames(command));
        } else if (!actions.empty()) {
            message = commandPrefix(command) + "unknown command '" + word + "'" +
                      pallix::tool::didYouMean(word, actions);
        }
    }
    pallix::tool::reportError(message);
    std::cerr << "Run '" << commandPath(command) << " --help' for more information.\n";
    return pallix::tool::kUsage;
}

// "pallix help [COMMAND...]": the help of a command, as "pallix COMMAND... --help" prints it.
void registerHelpCommand(CLI::App& app, std::vector<std::string>& words) {
    CLI::App* help = app.add_subcommand("help", "Show the help of a command");
    help->add_option("command", words, "The command (and subcommand) to describe");
    pallix::tool::setExample(*help, "pallix help config set");
    help->callback([&app, &words] {
        const CLI::App* command = &app;
        for (const std::string& word : words) {
            const CLI::App* sub = nullptr;
            try {
                sub = command->get_subcommand(word);
            } catch (const CLI::OptionNotFound&) {
                pallix::tool::failUsage(commandPrefix(*command) + "unknown command '" + word + "'" +
                                        pallix::tool::didYouMean(word, subcommandNames(*command)));
            }
            command = sub;
        }
        // Named from the tool down, as "pallix COMMAND --help" names it.
        std::cout << command->help(command == &app ? std::string()
                                                   : commandPath(*command->get_parent()));
    });
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"pallix: inspect and exercise the Pallix runtime library", "pallix"};
    app.set_version_flag("--version", std::string("pallix ") + PALLIX_VERSION);
    app.require_subcommand(0, 1);

    pallix::tool::registerRuntimeCommands(app);
    pallix::tool::registerConfigCommands(app);
    pallix::tool::registerCloudCommands(app);
    pallix::tool::registerTableCommands(app);
    pallix::tool::registerNotifyCommands(app);
    pallix::tool::registerPortbindCommands(app);
    pallix::tool::registerFactoryCommands(app);
    pallix::tool::registerIpswCommands(app);
    pallix::tool::registerUtilityCommands(app);
    pallix::tool::registerCheckCommands(app);
    pallix::tool::registerReleaseCommands(app);
    pallix::tool::registerDemoCommands(app);
    std::vector<std::string> helpWords;
    registerHelpCommand(app, helpWords);
    // Set last: subcommands take their parent's footer when they are added.
    pallix::tool::setExample(app, "pallix help check\npallix check " +
                                      pallix::tool::kOwnConfigDirectory + "/" +
                                      pallix::format::kConfigurationFile);
    app.footer(app.get_footer() + "\n" + kExitStatuses + "\n");

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        return app.exit(helpOrVersion);
    } catch (const CLI::ParseError& error) {
        return reportUsageError(app, error, std::vector<std::string>(argv + 1, argv + argc));
    } catch (const pallix::tool::Failure& failure) {
        if (failure.what()[0] != '\0') {
            pallix::tool::reportError(failure.what());
        }
        return failure.status();
    }
    if (app.get_subcommands().empty()) {
        std::cout << app.help();
        return 0;
    }
    return pallix::tool::exitStatus();
}
