// SPDX-License-Identifier: MIT
#include "help/HelpFormatter.h"

#include "help/HelpTexts.h"

#include <fmt/format.h>

#include <sstream>
#include <string_view>

namespace {

constexpr std::size_t HELP_WIDTH = 100;
constexpr std::string_view INDENT = "      ";

/// A list as CLI11 writes the options.
std::string titledList(const char* title, const std::vector<HelpEntry>& entries)
{
    std::string text = entries.empty() ? std::string() : fmt::format("{}:\n", title);
    for (const HelpEntry& entry : entries) {
        text += fmt::format("  {}\n", entry.term);
        std::istringstream lines(wrapped(entry.text, HELP_WIDTH - INDENT.size()));
        for (std::string line; std::getline(lines, line);) {
            text += fmt::format("{}{}\n", INDENT, line);
        }
    }
    return entries.empty() ? text : text + "\n";
}

std::string exitCodeLine()
{
    std::string text;
    for (const ExitCodeText& one : exitCodeTexts()) {
        text += fmt::format("{}{} {}", text.empty() ? "Exit codes: " : ", ", one.code, one.name);
    }
    return wrapped(text, HELP_WIDTH);
}

} // namespace

std::vector<const CLI::Option*> globalOptions(const CLI::App& program)
{
    return program.get_options([](const CLI::Option* option) { return option->get_group() == GLOBAL_GROUP; });
}

std::vector<const CLI::App*> shownCommands(const CLI::App& program)
{
    return program.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

HelpFormatter::HelpFormatter()
{
    label("SUBCOMMAND", "COMMAND");
    label("Subcommands", "Commands");
}

std::string HelpFormatter::make_footer(const CLI::App* app) const
{
    const CLI::App* const program = app->get_parent();
    std::string text;
    if (program != nullptr) {
        text += make_group(GLOBAL_GROUP, false, globalOptions(*program)) + "\n";
    }
    if (!app->get_footer().empty()) {
        text += app->get_footer() + "\n\n";
    }
    text += titledList("Examples", exampleTexts(app->get_name()));
    if (program == nullptr) {
        text += titledList("Environment", environmentTexts());
    }
    return text + titledList("Files", fileTexts()) + exitCodeLine();
}
