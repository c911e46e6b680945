// SPDX-License-Identifier: MIT
#include "border/FacePlaces.h"

#include "border/CellFaces.h"

#include <algorithm>
#include <bit>
#include <utility>

std::uint64_t mixedBits(std::uint64_t value)
{
    value ^= value >> 31;
    value *= 0x9E3779B97F4A7C15U;
    value ^= value >> 29;
    value *= 0xBF58476D1CE4E5B9U;
    return value ^ (value >> 32);
}

std::uint64_t placeKey(const std::vector<double>& coordinates, std::span<const std::int32_t> nodes)
{
    std::uint64_t key = 0;
    for (const std::int32_t node : nodes) {
        std::uint64_t place = 0;
        for (const double coordinate : nodeAt(coordinates, node)) {
            place = mixedBits(place + std::bit_cast<std::uint64_t>(coordinate));
        }
        key += mixedBits(place);
    }
    return key;
}

void keepUnpaired(std::vector<std::uint64_t>* keys)
{
    std::ranges::sort(*keys);
    std::vector<std::uint64_t> unpaired;
    for (const std::uint64_t key : *keys) {
        if (!unpaired.empty() && unpaired.back() == key) {
            unpaired.pop_back();
        } else {
            unpaired.push_back(key);
        }
    }
    *keys = std::move(unpaired);
}
