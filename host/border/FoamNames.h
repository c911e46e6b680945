// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostMetaData.h"

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// The names that OpenFOAM's users know: the field that each result shows and the time folder that each state was read
/// from.
///
/// The interface passes neither, so they come from the case folder and the library's rules: an id is the name of the
/// field in capitals, or a word for one of four well-known fields; states of the same time are in the order of the
/// names of their folders.
class FoamNames
{
public:
    /// @param metaData the description of the case, which must outlive the object
    FoamNames(const std::filesystem::path& caseFolder, const HostMetaData& metaData);

    /// The name of the state's time folder, or an empty text if none has its time.
    std::string folderOf(const HostState& state) const;

    /// The same, or the time as a number if there is no such folder.
    std::string timeTextOf(const HostState& state) const;

    /// The name of the result's field. Falls back to the id, without its ending, if no file of the case fits.
    std::string fieldOf(const HostResultInfo& result) const;

private:
    std::map<std::int32_t, std::string> m_folders; ///< by id of the state
    std::map<std::string, std::string> m_fields;   ///< by id of the result, without its ending
};
