// pallix: the command-line companion of libPallixRuntime. Each subsystem of the library adds
// its subcommands; they all go through the library's public interface.

#include "Commands.h"
#include "Directories.h"
#include "Failure.h"
#include "FileNames.h"
#include "Suggestion.h"
#include "ToolOutput.h"

#include <cctype>
#include <iostream>
#include <string>
#include <vector>

namespace {

const char* const kExitStatuses = "Exit status: 0 success; 1 not found, rejected, or warnings "
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

// A word of the command line as the parser meets it, with the command it was met in.
struct Word {
    enum class Role { Command, Option, UnknownOption, Value, Argument };
    std::string text;
    const CLI::App* command;
    Role role;
    bool afterSeparator; // after "--", where every word is an argument
};

const CLI::Option* findOption(const CLI::App& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    for (const CLI::App* at = &command; at != nullptr; at = at->get_parent()) {
        if (const CLI::Option* option = at->get_option_no_throw(name)) {
            return option;
        }
    }
    return nullptr;
}

const CLI::App* findSubcommand(const CLI::App& command, const std::string& name) {
    const auto named =
        command.get_subcommands([&name](const CLI::App* sub) { return sub->get_name() == name; });
    return named.empty() ? nullptr : named.front();
}

// The command line read again the way CLI11 reads it, so that a usage error can name the word
// at fault and the command it belongs to.
std::vector<Word> readWords(const CLI::App& app, const std::vector<std::string>& arguments) {
    std::vector<Word> words;
    const CLI::App* command = &app;
    bool separated = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& text = arguments[i];
        if (!separated && text == "--") {
            separated = true;
            continue;
        }
        if (separated) {
            words.push_back({text, command, Word::Role::Argument, true});
        } else if (text.size() > 1 && text[0] == '-' &&
                   !std::isdigit(static_cast<unsigned char>(text[1]))) {
            // As CLI11 does, "-35" is a number, not an option.
            const CLI::Option* option = findOption(*command, text);
            words.push_back(
                {text, command, option ? Word::Role::Option : Word::Role::UnknownOption, false});
            if (option != nullptr && option->get_type_size() != 0 &&
                text.find('=') == std::string::npos && i + 1 < arguments.size()) {
                words.push_back({arguments[++i], command, Word::Role::Value, false});
            }
        } else if (const CLI::App* sub = findSubcommand(*command, text)) {
            command = sub;
            words.push_back({text, command->get_parent(), Word::Role::Command, false});
        } else {
            words.push_back({text, command, Word::Role::Argument, false});
        }
    }
    return words;
}

// The word that CLI11's error is about: the first of the words it did not expect (its message
// lists them last first), else the first unknown option, else a word where the command
// reached wants an action. Null when the error is about no word.
const Word* wordAtFault(const CLI::ParseError& error, const std::vector<Word>& words,
                        const CLI::App& reached) {
    const std::string message = error.what();
    const auto listed = message.find("expected: ");
    if (listed != std::string::npos) {
        const std::string unexpected = " " + message.substr(listed + 10) + " ";
        for (const Word& word : words) {
            if (word.role != Word::Role::Command &&
                unexpected.find(" " + word.text + " ") != std::string::npos) {
                return &word;
            }
        }
    }
    for (const Word& word : words) {
        if (word.role == Word::Role::UnknownOption) {
            return &word;
        }
    }
    if (error.get_name() == "RequiredError" && !subcommandNames(reached).empty()) {
        for (const Word& word : words) {
            if (word.role == Word::Role::Argument && word.command == &reached) {
                return &word;
            }
        }
    }
    return nullptr;
}

std::string unknownOption(const Word& word) {
    const CLI::App& command = *word.command;
    const std::string name = word.text.substr(0, word.text.find('='));
    // An option of an action, given before the action.
    std::vector<std::string> owners;
    for (const CLI::App* sub : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (sub->get_option_no_throw(name) != nullptr) {
            owners.push_back("'" + sub->get_name() + "'");
        }
    }
    if (!owners.empty()) {
        return commandPrefix(command) + "'" + name + "' is an option of " +
               pallix::tool::joined(owners, "and") + ": put it after the " +
               (command.get_parent() == nullptr ? "command" : "action");
    }
    const std::string suggestion = pallix::tool::didYouMean(name, optionNames(command));
    return commandPrefix(command) + "unknown option '" + word.text + "'" + suggestion +
           (suggestion.empty() && word.text.rfind("--", 0) != 0
                ? " (an argument that starts with '-' goes after '--')"
                : "");
}

// A usage error in the words of CLI11, with a suggestion where a word was mistyped and a
// pointer to the help of the command that the word belongs to.
int reportUsageError(const CLI::App& app, const CLI::ParseError& error,
                     const std::vector<std::string>& arguments) {
    const CLI::App& reached = *innermostCommand(app);
    const std::vector<Word> words = readWords(app, arguments);
    const Word* word = wordAtFault(error, words, reached);
    const CLI::App& command = word != nullptr ? *word->command : reached;
    std::string message = error.what();
    const std::vector<std::string> actions = subcommandNames(command);
    if (word == nullptr) {
        // CLI11 asks for an action before anything else: name the actions to choose from.
        if (error.get_name() == "RequiredError" && !actions.empty()) {
            message = commandPrefix(command) + "an action is required (" +
                      pallix::tool::joined(actions) + ")";
        }
    } else if (word->role == Word::Role::UnknownOption) {
        message = unknownOption(*word);
    } else if (!actions.empty() && !word->afterSeparator) {
        message = commandPrefix(command) + "unknown command '" + word->text + "'" +
                  pallix::tool::didYouMean(word->text, actions);
    } else {
        message = commandPrefix(command) + "unexpected argument '" + word->text + "'";
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
        // Named from the tool down, as "pallix COMMAND --help" names it. (App::help() would
        // show the help of the command that ran: "help" itself.)
        std::cout << command->get_formatter()->make_help(command, commandPath(*command),
                                                         CLI::AppFormatMode::Normal);
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
    pallix::tool::endHelp(app, kExitStatuses,
                          "pallix help check\npallix check " + pallix::tool::kOwnConfigDirectory +
                              "/" + pallix::format::kConfigurationFile);

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
