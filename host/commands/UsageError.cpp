// SPDX-License-Identifier: MIT
#include "commands/UsageError.h"

#include "commands/OptionForms.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace {

/// The commands that help shows.
std::vector<std::string> commandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App* one) { return !one->get_group().empty(); })) {
        names.push_back(command->get_name());
    }
    return names;
}

void addOptionNames(const CLI::App& app, std::vector<std::string>* names)
{
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names->push_back("--" + name);
        }
    }
}

/// The command that was recognised, or null.
const CLI::App* chosenCommand(const CLI::App& app)
{
    const std::vector<const CLI::App*> all = app.get_subcommands([](const CLI::App*) { return true; });
    const auto found = std::ranges::find_if(all, [](const CLI::App* command) { return command->parsed(); });
    return found == all.end() ? nullptr : *found;
}

} // namespace

std::string usageMessage(const CLI::App& app, const CLI::ParseError& error)
{
    const CLI::App* const command = chosenCommand(app);
    const std::vector<std::string> extras = app.remaining(true);
    const std::string word = extras.empty() ? "" : extras.front().substr(0, extras.front().find('='));
    std::string message = error.what();
    std::vector<std::string> known;
    if (word.starts_with("-")) {
        addOptionNames(app, &known);
        if (command != nullptr) {
            addOptionNames(*command, &known);
        }
        message = fmt::format("there is no option '{}'", word);
    } else if (command == nullptr) {
        known = commandNames(app);
        message = word.empty() ? "no command is given" : fmt::format("there is no command '{}'", word);
    } else if (!word.empty()) {
        message = fmt::format("'{}' is one argument too many", word);
    }
    if (const std::string meant = word.empty() ? "" : nearestWord(word, known); !meant.empty()) {
        message += fmt::format("; did you mean '{}'?", meant);
    }
    return fmt::format("{}\nddphost {}--help tells more", message, command == nullptr ? "" : command->get_name() + " ");
}
