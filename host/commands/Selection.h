// SPDX-License-Identifier: MIT
#pragma once

#include "border/OpenedCase.h"

#include <array>
#include <string>
#include <vector>

// What users type to select states, results and groups. All functions throw `HostError` of `Usage`, with a list of what
// there is, if a text selects nothing of what there is.

/// The help text for a selection of states.
inline constexpr const char* STATE_HELP =
    "a time or the name of its folder, first, latest, all, noZero, FROM:TO, #ID, or several of these with commas";

/// Its words, for completion.
inline constexpr std::array STATE_WORDS = {"first", "latest", "all", "noZero"};

/// The help texts for selections of results and groups.
inline constexpr const char* RESULT_HELP =
    "Only results with this field, name, id, part of a name, or regular expression; case does not matter";
inline constexpr const char* GROUP_HELP =
    "Only parts, patches, face zones and surfaces with this name, part of a name, or regular expression";

/// The states that a text selects, in the order of the case.
///
/// The text is one of the forms of `STATE_HELP`. A time is the name of a folder, or else a number within a millionth of
/// itself: times come from folder names, and what users type is seldom the same number to the last bit. It never stands
/// for one of several states that are as near. "last" is the same as "latest"; both select nothing in a case without
/// states. A range includes both ends, and either may be left out.
std::vector<const HostState*> selectStates(OpenedCase& opened, const std::string& text);

/// The results that a text selects: those whose field, shown name, key or id it is; if there are none, those with a
/// name that contains it; if there are none, those with a name that it matches as a regular expression, best in full.
/// Case does not matter. An empty text selects all.
std::vector<const HostResultInfo*> selectResults(OpenedCase& opened, const std::string& text);

/// Positions in `HostMetaData::geometryGroups` of the groups that a text selects, by their names and by PART/NAME, in
/// the same way as results.
std::vector<std::size_t> selectGroups(OpenedCase& opened, const std::string& text);
