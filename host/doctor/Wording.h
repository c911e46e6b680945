// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/Findings.h"

#include <filesystem>
#include <string>
#include <string_view>

/// Small texts that several places need.
namespace wording {

/// The last component of a path.
std::string fileName(std::string_view path);

/// The text up to its first blank or bracket.
std::string firstWordOf(std::string_view text);

/// A path without the folder that it is in; unchanged if it is elsewhere.
std::string pathIn(const std::filesystem::path& folder, const std::string& path);

/// The cause from a problem that the reader of dictionaries tells as "PATH, line N: TEXT".
Cause causeOfProblem(const std::string& problem, const std::filesystem::path& root, const std::string& file);

} // namespace wording
