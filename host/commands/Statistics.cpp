// SPDX-License-Identifier: MIT
#include "commands/Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int VECTOR_DIMENSION = 3;

/// Collects values one by one.
class StatisticsBuilder
{
public:
    void add(double value)
    {
        ++m_result.items;
        if (value == UNDEFINED_VALUE) {
            ++m_result.undefined;
        } else if (std::isnan(value)) {
            ++m_result.notANumber;
        } else if (std::isinf(value)) {
            ++m_result.infinite;
        } else {
            m_least = std::min(m_least, value);
            m_greatest = std::max(m_greatest, value);
            m_sum += value;
        }
    }

    ComponentStatistics result() const
    {
        ComponentStatistics result = m_result;
        const std::size_t counted = result.items - result.undefined - result.notANumber - result.infinite;
        if (counted == 0) {
            result.least = result.greatest = result.mean = std::numeric_limits<double>::quiet_NaN();
            return result;
        }
        // Adding zero turns -0 into 0, which is the same value and would only puzzle.
        result.least = m_least + 0.0;
        result.greatest = m_greatest + 0.0;
        result.mean = static_cast<double>(m_sum / static_cast<long double>(counted)) + 0.0;
        return result;
    }

private:
    ComponentStatistics m_result;
    double m_least = std::numeric_limits<double>::infinity();
    double m_greatest = -std::numeric_limits<double>::infinity();
    long double m_sum = 0; ///< a double would lose digits of the mean of millions of similar values
};

ComponentStatistics statisticsOfComponent(const HostValueGroup& group, std::size_t component)
{
    StatisticsBuilder builder;
    const auto stride = static_cast<std::size_t>(group.dimension);
    for (std::size_t i = component; i < group.values.size(); i += stride) {
        builder.add(group.values[i]);
    }
    return builder.result();
}

double magnitudeOf(const double* vector)
{
    if (std::find(vector, vector + VECTOR_DIMENSION, UNDEFINED_VALUE) != vector + VECTOR_DIMENSION) {
        return UNDEFINED_VALUE;
    }
    for (const double value : {vector[0], vector[1], vector[2]}) {
        if (std::isnan(value)) {
            return value;
        }
    }
    return std::hypot(vector[0], vector[1], vector[2]);
}

ComponentStatistics statisticsOfMagnitude(const HostValueGroup& group)
{
    StatisticsBuilder builder;
    for (std::size_t i = 0; i + VECTOR_DIMENSION <= group.values.size(); i += VECTOR_DIMENSION) {
        builder.add(magnitudeOf(group.values.data() + i));
    }
    return builder.result();
}

} // namespace

std::vector<ComponentStatistics> statisticsOf(const HostValueGroup& group)
{
    std::vector<ComponentStatistics> result;
    result.reserve(static_cast<std::size_t>(group.dimension) + 1);
    for (int component = 0; component < group.dimension; ++component) {
        result.push_back(statisticsOfComponent(group, static_cast<std::size_t>(component)));
    }
    if (group.dimension == VECTOR_DIMENSION) {
        result.push_back(statisticsOfMagnitude(group));
    }
    return result;
}

std::vector<std::string> componentNames(int dimension)
{
    constexpr int SYMMETRIC_TENSOR_DIMENSION = 6;
    if (dimension == 1) {
        return {""};
    }
    if (dimension == VECTOR_DIMENSION) {
        return {"x", "y", "z", "magnitude"};
    }
    if (dimension == SYMMETRIC_TENSOR_DIMENSION) {
        return {"xx", "xy", "xz", "yy", "yz", "zz"};
    }
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(std::max(dimension, 0)));
    for (int component = 0; component < dimension; ++component) {
        names.push_back(std::to_string(component));
    }
    return names;
}
