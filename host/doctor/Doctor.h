// SPDX-License-Identifier: MIT
#pragma once

#include "border/PluginLibrary.h"
#include "doctor/Findings.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

/// What to look at.
struct DoctorOptions
{
    std::vector<std::string> settings; ///< of the user, as KEY=VALUE
    std::string states = "some";       ///< "some", which is the first, one in the middle and the last, "all", or a time
    bool showsProgress = false;
};

/// The forms that the files of a case have.
struct CaseForms
{
    std::map<std::string, std::size_t> files; ///< how many of those looked at are "ascii", "binary", "gzip"
    std::set<std::string> rawForms;           ///< the entries `arch` of binary files
    std::size_t cells = 0;
    std::size_t patches = 0;
    std::vector<std::string> regions;
    std::size_t processors = 0;
    std::size_t times = 0;
    std::set<std::string> surfaces;
    std::size_t movedPointTimes = 0;
    bool hasWholeMeshBesidePieces = false; ///< one that is not shown, because it has no results of its own

    /// Counts a file.
    void count(bool isGzip, bool isBinary, const std::string& arch);
};

/// How many arrays of values a case has in the times that were looked at, and how many of them show.
struct ArrayCounts
{
    std::size_t all = 0;
    std::size_t plain = 0;    ///< those that plain reading shows as extended reading does
    std::size_t extended = 0; ///< those that extended reading shows
};

/// What is known of a case.
struct DoctorReport
{
    std::string folder;
    Findings findings;
    CaseForms forms;
    ArrayCounts arrays;
    std::vector<std::string> timesLookedAt;
    std::vector<std::string> slow; ///< what will take long, each with a figure
};

/// Looks at a case by itself and as the library delivers it in both ways of reading, and says what a host will not
/// show.
///
/// What lies in the folder decides what there is to show; what the library delivers decides what shows; the files
/// explain the difference.
/// @throws HostError of `CaseRefused` if the path leads to no folder, of `Usage` for a setting or time that is unknown
DoctorReport examineCase(PluginLibrary& library, const std::string& casePath, const DoctorOptions& options);
