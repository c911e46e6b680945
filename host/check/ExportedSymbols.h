// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The names that a shared library exports, sorted: the defined symbols of its dynamic table.
///
/// Parsed here, because users' machines need not have a tool for it. Reads 64-bit files in this machine's byte order,
/// and never outside the file, whatever its tables claim.
/// @throws HostError of `LibraryRefused` for any other file
std::vector<std::string> exportedSymbols(const std::filesystem::path& library);
