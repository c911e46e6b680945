// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// Opens a case, reads its geometry and results and polls. Whatever fails, deliveries must be consistent.
///
/// @return the bytes of all arrays, or none if the library refused a request
std::optional<std::string> useCase(const std::filesystem::path& folder);
