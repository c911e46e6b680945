// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// How exactly a page keeps coordinates and values.
enum class PagePrecision : int
{
    Steps16 = 16, ///< 16 bits: equal steps from the least to the greatest value of an array
    Floats32 = 32
};

/// An array as a page holds it.
///
/// Numbers are little-endian. Each but the first one is replaced by its difference to the one before, as whole numbers
/// that wrap; then all lowest bytes come first, then all second bytes, and so on. Neighbours of a mesh are alike, so
/// most of these bytes are the same, which is what deflate needs.
struct PackedArray
{
    std::string text;            ///< deflated, in base64
    nlohmann::ordered_json form; ///< what the page needs to know to read it
};

/// Packs whole numbers of 32 bits, or of 8 bits.
PackedArray packIntegers(const std::vector<std::int32_t>& values);
PackedArray packBytes(const std::vector<std::uint8_t>& values);

/// Packs all digits, without differences.
PackedArray packDoubles(const std::vector<double>& values);

/// Packs `components` values per item, component after component.
///
/// `form` has a number for each component to add to the values, which keeps digits of values that are large and alike.
/// With steps it also has their size. The greatest float, or the greatest step, is an undefined value, and the steps
/// below it are NaN, infinity and its negative.
/// @param values item after item; `UNDEFINED_VALUE` is a missing one
PackedArray packValues(std::span<const double> values, std::size_t components, PagePrecision precision);
