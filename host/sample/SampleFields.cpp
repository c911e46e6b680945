// SPDX-License-Identifier: MIT
#include "sample/SampleFields.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

// Binary lists begin right after the "(", where readers skip line feeds. A first value whose lowest byte is the code of
// a line feed would lose that byte, so that byte is always zero.
double withoutLowestByte(double value)
{
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) & ~std::uint64_t{0xff});
}

/// The product of one linear function for each axis: 1 at the origin, zero on three planes.
double fallingAlong(const SamplePoint& place, const SamplePoint& slopes)
{
    return (1 - slopes[0] * place[0]) * (1 - slopes[1] * place[1]) * (1 - slopes[2] * place[2]);
}

} // namespace

double sampleTemperature(const SamplePoint& place, double time)
{
    return withoutLowestByte(300 + 9.87 * place[0] + 19.3 * place[1] + 30.7 * place[2] + 5 * time);
}

double samplePressure(const SamplePoint& place, double time)
{
    return withoutLowestByte((1 + time) * 0.5 * place[0] * place[1] * place[2]);
}

SamplePoint sampleVelocity(const SamplePoint& place, double time)
{
    return {withoutLowestByte((1 + time) * 0.5 * fallingAlong(place, {0.37, 0.23, 0.17})),
            withoutLowestByte((1 + time) * 0.5 * fallingAlong(place, {0.19, 0.41, 0.29})),
            withoutLowestByte((1 + time) * 0.25 * fallingAlong(place, {0.31, 0.13, 0.43}))};
}

SamplePoint movedPoint(const SamplePoint& place, double time)
{
    const double angle = 0.1 * time * place[2];
    return {place[0] * std::cos(angle) - place[1] * std::sin(angle),
            place[0] * std::sin(angle) + place[1] * std::cos(angle), place[2]};
}
