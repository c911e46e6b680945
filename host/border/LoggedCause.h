// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What a line of the library says of a file.
struct LoggedCause
{
    std::string file; ///< its path; empty if the line does not name one
    std::string reason;

    bool operator==(const LoggedCause&) const = default;
};

/// Takes a line of the library such as "OFFile : Failed to open it. File basename is PATH" apart.
LoggedCause loggedCause(const std::string& line);
