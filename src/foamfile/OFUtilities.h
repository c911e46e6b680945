// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <cstdint>
#include <vector>

/// Folder listings and path splitting, on which file access and case discovery stand. No state; paths go to the system
/// as UTF-8.
class OFUtilities
{
public:
    /// Bare names of the sub-folders in the order of `readdir`; empty if the folder cannot be opened.
    ///
    /// A link counts if its text, resolved against the working folder of the process and not against `folder`, names
    /// something whose mode has the directory bit. Hosts have come to rely on which links show, so it stays so. An
    /// entry of unknown type does not count.
    static std::vector<dvn::Str> subFolders(const dvn::Str& folder);

    /// Full paths of all entries, sub-folders too, in the order of `readdir`; empty if the folder cannot be opened.
    static std::vector<dvn::Str> filesInFolder(const dvn::Str& folder);

    /// True for files and folders alike.
    static bool fileExists(const dvn::Str& path);
    /// Whether a folder has a sub-folder of this name, as a folder or as a link that `subFolders` takes for one.
    static bool hasSubFolder(const dvn::Str& folder, const dvn::Str& name);

    /// True if the path names a regular file, through links; pipes and devices, which may block, are none.
    static bool isRegularFile(const dvn::Str& path);

    /// The last component of a path, "/" and "\" being separators; empty if there is none.
    static dvn::Str fileNameFromPath(const dvn::Str& path);
    /// The same, under the name used for folders.
    static dvn::Str folderNameFromPath(const dvn::Str& path);
    /// The last component up to its last "."; whole if it has none, empty if its only "." comes first.
    static dvn::Str fileBaseName(const dvn::Str& path);
};
