// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>

/// Makes file names of the names of groups and keeps them apart.
///
/// A group's name comes from a case file and may hold anything, a path of its own among it. Letters, digits, "-", "."
/// and "_" stay, any other byte becomes "_", and a leading "." gets one in front. Names that differ in case only are
/// kept apart too, since some file systems do not.
class FileNames
{
public:
    /// A name that was not given out before: the stem, if need be numbered, and the extension.
    std::string unique(const std::string& groupName, const std::string& extension);

private:
    std::set<std::string> m_taken;
};
