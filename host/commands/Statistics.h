// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostResult.h"

#include <cstddef>
#include <vector>

/// One component of the values of one group, in figures.
///
/// Every value is counted once: as undefined, as NaN, as infinite or as one of `items` minus those. Least, greatest and
/// mean are of the latter; with none of them they are NaN.
struct ComponentStatistics
{
    std::size_t items = 0;     ///< all of them, whatever their values
    std::size_t undefined = 0; ///< the interface's mark for a missing value
    std::size_t notANumber = 0;
    std::size_t infinite = 0;
    double least = 0;
    double greatest = 0;
    double mean = 0;
};

/// The statistics of each component of a group of values.
std::vector<ComponentStatistics> statisticsOf(const HostValueGroup& group);
