// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <map>

// An inline object of the library, made when it is loaded and gone when it is unloaded; nothing else that is made at
// load time uses it. A process without room for these few bytes has none for the library either.
// NOLINTBEGIN(cert-err58-cpp)

/// Field names with a word of their own in the id of their results, whatever names the user shows. Hosts store views by
/// these ids. "g" has a shown name in the default settings but no word here, so its id stays "G".
inline const std::map<dvn::Str, dvn::Str> OPENFOAM_IDSTRINGS_MAP = {
    {"U", "VELOCITY"}, {"p", "PRESSURE"}, {"rho", "DENSITY"}, {"T", "TEMPERATURE"}};
// NOLINTEND(cert-err58-cpp)
