// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostMetaData.h"

#include <string>
#include <vector>

/// The states that a text selects: "last", "all", a time, or "#" and a state id.
///
/// A time selects the nearest state within a millionth of the longest time: times are read from folder names, and what
/// users type is seldom the same number to the last bit.
/// @throws HostError of `Usage` when no state matches; "last" selects none in a case without states
std::vector<const HostState*> selectStates(const HostMetaData& metaData, const std::string& text);

/// The results whose name or key contains a match of the pattern; an empty pattern selects all.
/// @throws HostError of `Usage` for a pattern that is not a regular expression or that no result matches
std::vector<const HostResultInfo*> selectResults(const HostMetaData& metaData, const std::string& pattern);

/// Positions in `HostMetaData::geometryGroups` of the groups whose name contains a match of the pattern; an empty
/// pattern selects all.
/// @throws HostError of `Usage` for a pattern that is not a regular expression or that no group matches
std::vector<std::size_t> selectGroups(const HostMetaData& metaData, const std::string& pattern);
