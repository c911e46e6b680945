// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>

/// Makes unique file names from the names of groups.
///
/// The name of a group comes from a case file and may contain anything, even a path. Letters, digits, "-", "." and "_"
/// stay, any other byte becomes "_", and a "_" is put before a leading ".". Names that differ only in case get a number
/// too, since some file systems do not distinguish them.
class FileNames
{
public:
    /// A name not given out before: the stem, with a number if necessary, and the extension.
    std::string unique(const std::string& groupName, const std::string& extension);

private:
    std::set<std::string> m_taken;
};
