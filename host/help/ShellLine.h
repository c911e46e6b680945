// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The start of a command line up to the cursor, split into words as bash does, without expanding anything.
struct ShellLine
{
    std::vector<std::string> words; ///< without their quotes; the last one is being typed and may be empty
    char quote = 0;                 ///< the quote that the last word has left open, or 0
    std::size_t kept = 0;           ///< bytes of the last word that the shell does not replace by the completed text
};

/// @param breaks the characters at which the line editor divides a word, bash's COMP_WORDBREAKS: of `--state=0.5` it
///               replaces only what follows the `=`
ShellLine splitShellLine(std::string_view line, std::string_view breaks);

/// The text in a form that bash reads back as the same text, inside the quote if it is not 0. The quote stays open for
/// the line editor to close, unless the text ends with one like it, which the line editor would take for the end.
std::string quotedForShell(std::string_view text, char quote);
