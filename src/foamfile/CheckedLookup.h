// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

/// The value of a key that must be there.
///
/// Compatibility (docs/compatibility.md, "the exception text"): not the text of the standard library, so every checked
/// look-up goes through here.
///
/// @throws std::out_of_range with "map::at:  key not found"
template <typename Map, typename Key>
const typename Map::mapped_type& checkedLookup(const Map& map, const Key& key)
{
    const auto entry = map.find(key);
    if (entry == map.end()) {
        throw std::out_of_range("map::at:  key not found");
    }
    return entry->second;
}
