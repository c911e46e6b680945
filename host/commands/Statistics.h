// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostResult.h"

#include <cstddef>
#include <string>
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

/// The statistics of each component of a group of values, and of the magnitude after those of vectors.
///
/// A magnitude is undefined, NaN or infinite if one of its components is, in this order.
std::vector<ComponentStatistics> statisticsOf(const HostValueGroup& group);

/// The names that go with `statisticsOf`: empty for scalars, x y z magnitude, xx xy xz yy yz zz, or numbers from 0.
std::vector<std::string> componentNames(int dimension);
