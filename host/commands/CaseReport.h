// SPDX-License-Identifier: MIT
#pragma once

#include "border/LoggedCause.h"
#include "border/OpenedCase.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// Requests the geometry and finds out whether a part is empty because its mesh could not be read, or a list of a mesh
/// or of a sampled surface breaks off. What the interface cannot hold is told on stderr.
/// @return why, one entry per file and reason; none if all parts have cells or those without are empty in their files
/// too
std::vector<LoggedCause> unreadMeshes(OpenedCase& opened);

/// The same as a list of objects with file and reason.
nlohmann::ordered_json unreadDocument(const std::vector<LoggedCause>& unread);

/// Tells each unread mesh in a line on stderr, in place of the library's own lines on it.
void tellUnreadMeshes(const std::vector<LoggedCause>& unread);

/// Writes one line to stderr for the user.
void tellUser(const std::string& line);

/// The command that says why something of a case does not show: "for more: ddphost doctor CASE".
std::string doctorHint(const std::string& casePath);
