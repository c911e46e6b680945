// SPDX-License-Identifier: MIT
#pragma once

#include "border/LoggedCause.h"
#include "border/OpenedCase.h"

#include <string>
#include <vector>

/// Requests the geometry and finds out whether a part is empty because its mesh could not be read. What the interface
/// cannot hold is told on stderr.
/// @return why, one entry per file and reason; none if all parts have cells or those without are empty in their files
/// too
std::vector<LoggedCause> unreadMeshes(OpenedCase& opened);

/// Tells each unread mesh in a line on stderr, in place of the library's own lines on it.
void tellUnreadMeshes(const std::vector<LoggedCause>& unread);

/// Writes one line to stderr for the user.
void tellUser(const std::string& line);

/// The command that says why something of a case does not show, and what it does: "'ddphost doctor CASE' says why".
std::string doctorHint(const std::string& casePath, const char* what);
