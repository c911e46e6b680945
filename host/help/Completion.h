// SPDX-License-Identifier: MIT
#pragma once

#include "commands/HostContext.h"

#include <string>
#include <vector>

/// Writes to stdout how the last of these words may go on, for the completion scripts of shells.
///
/// After `--` the words of a command line follow, without the name of the program, the last one possibly empty. After
/// `--bash` follow the line up to the cursor and the characters that divide words, and the candidates are quoted and
/// cut for bash to insert. One candidate per line with a tab and a description, or one word without a tab: "files" or
/// "folders" leaves the rest to the shell.
///
/// Ends the process after a second, with what it has found by then. Nothing else is written, whatever the library does:
/// the user is in the middle of a line.
void complete(const CLI::App& program, const std::vector<std::string>& words, HostContext* context);
