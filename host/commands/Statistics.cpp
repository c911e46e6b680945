// SPDX-License-Identifier: MIT
#include "commands/Statistics.h"

#include <algorithm>
#include <cmath>

namespace {

/// One pass over every `dimension`-th value.
ComponentStatistics statisticsOfComponent(const HostValueGroup& group, std::size_t component)
{
    ComponentStatistics result;
    // A double would lose digits of the mean when summing millions of similar values.
    long double sum = 0;
    result.items = group.itemCount();
    result.least = std::numeric_limits<double>::infinity();
    result.greatest = -std::numeric_limits<double>::infinity();
    const auto stride = static_cast<std::size_t>(group.dimension);
    for (std::size_t i = component; i < group.values.size(); i += stride) {
        const double value = group.values[i];
        if (value == UNDEFINED_VALUE) {
            ++result.undefined;
        } else if (std::isnan(value)) {
            ++result.notANumber;
        } else if (std::isinf(value)) {
            ++result.infinite;
        } else {
            result.least = std::min(result.least, value);
            result.greatest = std::max(result.greatest, value);
            sum += value;
        }
    }
    const std::size_t counted = result.items - result.undefined - result.notANumber - result.infinite;
    if (counted == 0) {
        result.least = result.greatest = result.mean = std::numeric_limits<double>::quiet_NaN();
    } else {
        result.mean = static_cast<double>(sum / static_cast<long double>(counted));
    }
    return result;
}

} // namespace

std::vector<ComponentStatistics> statisticsOf(const HostValueGroup& group)
{
    std::vector<ComponentStatistics> result;
    result.reserve(static_cast<std::size_t>(group.dimension));
    for (int component = 0; component < group.dimension; ++component) {
        result.push_back(statisticsOfComponent(group, static_cast<std::size_t>(component)));
    }
    return result;
}
