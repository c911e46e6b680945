// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <cstdint>
#include <vector>

/// Folder listings and path splitting for file access and case discovery. No state; paths go to the system as UTF-8.
///
/// A folder that exists but cannot be listed (too many open files, a stale network disk) leaves one line in the log. A
/// folder that does not exist is empty, and so is a file in its place.
class OFUtilities
{
public:
    /// Bare names of the sub-folders in the order of `readdir`; those read so far if the folder cannot be listed.
    ///
    /// Compatibility (docs/compatibility.md, "links to folders"): a link counts if its text, resolved against the
    /// working folder of the process and not against `folder`, names something whose mode has the directory bit. An
    /// entry of unknown type does not count.
    static std::vector<dvn::Str> subFolders(const dvn::Str& folder);
    /// The same for callers that must not mistake a failure for an empty folder.
    /// @return false if the folder cannot be listed; `names` then holds those read so far
    static bool listSubFolders(const dvn::Str& folder, std::vector<dvn::Str>* names);

    /// The same in order, with every link that leads to a folder, as OpenFOAM itself sees them.
    static bool listFoldersThroughLinks(const dvn::Str& folder, std::vector<dvn::Str>* names);

    /// Full paths of all entries, sub-folders too, in the order of `readdir`; those read so far if the folder cannot be
    /// listed.
    static std::vector<dvn::Str> filesInFolder(const dvn::Str& folder);
    /// Whether `filesInFolder` has a path with this base name.
    ///
    /// Usual names are looked up directly, plain and with ".gz". The entries are searched only if neither file exists
    /// or if the name contains a dot.
    static bool hasFileOfBaseName(const dvn::Str& folder, const dvn::Str& baseName);
    /// Whether the folder may have a file for this field: one whose base name or whole name is that of the field.
    ///
    /// A name with a separator is not looked up as a whole name, since it could lead out of the folder.
    static bool hasFieldFile(const dvn::Str& folder, const dvn::Str& fieldName);

    /// True for files and folders alike.
    static bool fileExists(const dvn::Str& path);
    /// Whether `subFolders` has this name, found without a listing.
    static bool hasSubFolder(const dvn::Str& folder, const dvn::Str& name);

    /// True if the path names a regular file, through links. Pipes and devices, which may block, do not count.
    static bool isRegularFile(const dvn::Str& path);
    /// The same for the path or the path with ".gz".
    static bool isRegularFileOrGz(const dvn::Str& path);
    /// True if the path leads to a folder, through links.
    static bool isFolder(const dvn::Str& path);
    /// True if the text is a number from its first to its last character, as the name of every time folder is.
    static bool isTimeName(const dvn::Str& name);
    /// True for the name of a file that was set aside by a user or a tool, such as U.orig; OpenFOAM does not take it
    /// for a field of the case either.
    static bool isSetAside(const dvn::Str& fileName);

    /// The last component of a path, "/" and "\" being separators; empty if there is none.
    static dvn::Str fileNameFromPath(const dvn::Str& path);
    /// The same, under the name used for folders.
    static dvn::Str folderNameFromPath(const dvn::Str& path);
    /// The last component up to its last "."; all of it if it has none, empty if its only "." comes first.
    static dvn::Str fileBaseName(const dvn::Str& path);
    /// The last component without a final ".gz".
    static dvn::Str fileNameWithoutGz(const dvn::Str& path);
};
