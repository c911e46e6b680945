// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostResult.h"

#include <cstddef>
#include <vector>

/// Statistics of one component of the values of one group.
///
/// Each value is either undefined, NaN, infinite or ordinary. Least, greatest and mean are those of the ordinary
/// values; if there are none, they are NaN.
struct ComponentStatistics
{
    std::size_t items = 0;     ///< all items, whatever their values
    std::size_t undefined = 0; ///< the interface's mark for a missing value
    std::size_t notANumber = 0;
    std::size_t infinite = 0;
    double least = 0;
    double greatest = 0;
    double mean = 0;
};

/// The statistics of each component of a group of values.
std::vector<ComponentStatistics> statisticsOf(const HostValueGroup& group);
