// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

/// The group of the options that are declared once, for the program, and belong to every command.
inline constexpr const char* GLOBAL_GROUP = "Options of every command";

/// The options of that group.
std::vector<const CLI::Option*> globalOptions(const CLI::App& program);

/// The commands that help shows, in its order.
std::vector<const CLI::App*> shownCommands(const CLI::App& program);

/// Writes the help of the program and of each command. It ends with the options of every command, which are where users
/// look for them, examples, and what is the same for all.
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter();
    std::string make_footer(const CLI::App* app) const override;
};
