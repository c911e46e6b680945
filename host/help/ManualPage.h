// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI {
class App;
} // namespace CLI

/// The name of the page of the program or of one of its commands, such as "ddphost-info".
std::string manualName(const CLI::App& app);

/// The manual page of the program or of one of its commands in roff, from the texts that `--help` shows.
/// @param date of the edition as YYYY-MM-DD; may be empty
std::string manualPage(const CLI::App& app, const std::string& date);
