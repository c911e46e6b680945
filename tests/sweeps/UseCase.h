// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// Opens, draws and colours a case, and polls in the end. What is delivered must be sound, whatever failed.
///
/// @return the bytes of all arrays, or none where the library refused
std::optional<std::string> useCase(const std::filesystem::path& folder);
