// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <map>

// An inline object of the library, constructed when it is loaded and destroyed when it is unloaded. Nothing else that
// is constructed at load time uses it. A process without memory for these few bytes could not load the library either.
// NOLINTBEGIN(cert-err58-cpp)

/// The words that stand for well-known fields in the ids of their results, whatever names the user chooses to show.
/// Compatibility (docs/compatibility.md, "g has no id word"): hosts store views under these ids.
inline const std::map<dvn::Str, dvn::Str> OPENFOAM_IDSTRINGS_MAP = {
    {"U", "VELOCITY"}, {"p", "PRESSURE"}, {"rho", "DENSITY"}, {"T", "TEMPERATURE"}};
// NOLINTEND(cert-err58-cpp)
