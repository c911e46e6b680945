// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// Components of a point, as of every vector.
inline constexpr std::size_t VECTOR_COMPONENTS = 3;
/// Stored components of a tensor.
inline constexpr std::size_t TENSOR_COMPONENTS = 6;
