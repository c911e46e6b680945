// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostMetaData.h"

#include <string>
#include <vector>

/// The states that a text names: "last", "all", a time, or "#" and a state id.
///
/// A time selects the state nearest to it, provided that it is nearer than a millionth of the longest time: times are
/// read from folder names, and what is typed is seldom the same number to the last bit.
/// @throws HostError of `Usage` when no state is meant; "last" of a case without states gives none
std::vector<const HostState*> selectStates(const HostMetaData& metaData, const std::string& text);

/// The results whose name or key contains the pattern; an empty pattern takes all.
/// @throws HostError of `Usage` for a pattern that is no regular expression or that no result meets
std::vector<const HostResultInfo*> selectResults(const HostMetaData& metaData, const std::string& pattern);

/// Positions in `HostMetaData::geometryGroups` of the groups whose name contains the pattern; an empty one takes all.
/// @throws HostError of `Usage` for a pattern that is no regular expression or that no group meets
std::vector<std::size_t> selectGroups(const HostMetaData& metaData, const std::string& pattern);
