// SPDX-License-Identifier: MIT
#include "commands/UsageError.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <vector>

namespace {

/// How many characters have to be changed, added or removed to make one word of the other.
std::size_t editDistance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < to.size(); ++k) {
            const std::size_t replaced = diagonal + (from[i] == to[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

/// The known word that a mistyped one is closest to, or an empty text if none is close.
std::string nearest(const std::string& word, const std::vector<std::string>& known)
{
    std::string best;
    std::size_t least = std::max<std::size_t>(word.size() / 2, 1) + 1;
    for (const std::string& candidate : known) {
        if (const std::size_t distance = editDistance(word, candidate); distance < least) {
            least = distance;
            best = candidate;
        }
    }
    return best;
}

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
    if (const std::string meant = word.empty() ? "" : nearest(word, known); !meant.empty()) {
        message += fmt::format("; did you mean '{}'?", meant);
    }
    return fmt::format("{}\nddphost {}--help tells more", message, command == nullptr ? "" : command->get_name() + " ");
}
