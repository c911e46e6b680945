// SPDX-License-Identifier: MIT
#pragma once

#include "border/OpenedCase.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// Why a mesh or a sampled surface is empty or not whole: a file that could not be read, and what is wrong with it.
struct UnreadMesh
{
    std::string file; ///< empty if the library did not name one
    std::string reason;
};

/// Requests the geometry and finds out whether a part is empty because its mesh could not be read, or a list breaks off. What the interface
/// cannot hold is told on stderr.
/// @return one entry per cause; none if all parts have cells or those without are empty in their files too
std::vector<UnreadMesh> unreadMeshes(OpenedCase& opened);

/// The same as a list of objects with file and reason.
nlohmann::ordered_json unreadDocument(const std::vector<UnreadMesh>& unread);

/// Tells each unread mesh in a line on stderr, in place of the library's own lines on it.
void tellUnreadMeshes(const std::vector<UnreadMesh>& unread);

/// Writes one line to stderr for the user.
void tellUser(const std::string& line);

/// The command that says why something of a case does not show: "for more: ddphost doctor CASE".
std::string doctorHint(const std::string& casePath);
