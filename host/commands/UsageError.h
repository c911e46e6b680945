// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

/// What is wrong with a command line, the command or option that was probably meant, and where to read more.
/// @param app the parser of all commands, after it has failed
std::string usageMessage(const CLI::App& app, const CLI::ParseError& error);
