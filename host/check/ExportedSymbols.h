// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The names that a shared library offers to others, sorted: the defined symbols of its dynamic table.
///
/// Read from the file and not by a tool, which a machine of users need not have. Reads 64-bit files of this machine's
/// byte order, and nothing outside the file whatever its tables claim.
/// @throws HostError of `LibraryRefused` for any other file
std::vector<std::string> exportedSymbols(const std::filesystem::path& library);
