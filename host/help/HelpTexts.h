// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

// Texts that `--help` and the manual pages share, besides what the commands declare.

/// One line of a list: a command line, a name or a number, and what it is.
struct HelpEntry
{
    std::string term;
    std::string text;
};

/// An exit code and what it means.
struct ExitCodeText
{
    std::string code;
    std::string name;
    std::string meaning; ///< more than the name says, for the manual pages
};

/// The exit codes of all commands.
const std::vector<ExitCodeText>& exitCodeTexts();

/// The environment variables that the program or the library reads.
const std::vector<HelpEntry>& environmentTexts();

/// Where the library is looked for.
const std::vector<HelpEntry>& fileTexts();

/// Command lines to start from; none for a command that is not in the table.
/// @param command the name of a command, or "ddphost"
std::vector<HelpEntry> exampleTexts(const std::string& command);

/// Breaks a text at blanks so that no line is longer than `width`, unless a single word is. Its own line feeds stay.
std::string wrapped(const std::string& text, std::size_t width);
