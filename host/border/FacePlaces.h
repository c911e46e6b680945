// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Mixes the bits of a number over the whole word.
std::uint64_t mixedBits(std::uint64_t value);

/// A key of a face by the coordinates of its nodes, the same in every group and whatever node it starts with. With 64
/// bits, accidental matches are negligible in any mesh that fits into memory.
std::uint64_t placeKey(const std::vector<double>& coordinates, std::span<const std::int32_t> nodes);

/// Sorts, and keeps one entry of each key that occurs an odd number of times and none of the others: two faces in one
/// place, as in a baffle or between cells, bound nothing.
void keepUnpaired(std::vector<std::uint64_t>* keys);
