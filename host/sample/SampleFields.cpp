// SPDX-License-Identifier: MIT
#include "sample/SampleFields.h"

#include <cmath>

namespace {

// Binary lists begin right behind the "(", where readers pass over line feeds. A first value whose lowest byte is the
// code of a line feed would lose that byte, so values have no bits that far down.
double rounded(double value)
{
    return std::ldexp(std::nearbyint(std::ldexp(value, 20)), -20);
}

} // namespace

double sampleTemperature(const SamplePoint& place, double time)
{
    return rounded(300 + 10 * place[0] + 20 * place[1] + 30 * place[2] + 5 * time);
}

SamplePoint sampleVelocity(const SamplePoint& place, double time)
{
    return {rounded((1 + time) * place[1]), rounded(-(1 + time) * place[0]), 0.5};
}

SamplePoint movedPoint(const SamplePoint& place, double time)
{
    const double angle = 0.1 * time * place[2];
    return {place[0] * std::cos(angle) - place[1] * std::sin(angle),
            place[0] * std::sin(angle) + place[1] * std::cos(angle), place[2]};
}
