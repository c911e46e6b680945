// SPDX-License-Identifier: MIT
//
// Turns and mirrors vectors and tensors, for patches whose values follow from those of cells.
#pragma once

#include "records/Components.h"

#include <array>

namespace rotation {

using Vector = std::array<double, VECTOR_COMPONENTS>;
using Matrix = std::array<Vector, VECTOR_COMPONENTS>;

double dot(const Vector& a, const Vector& b);
Vector cross(const Vector& a, const Vector& b);

/// The rotation that turns one unit vector into another.
Matrix between(const Vector& from, const Vector& to);
/// The rotation about a unit vector by the angle that has this cosine and sine.
Matrix about(const Vector& axis, double cosine, double sine);

/// Replaces a vector v by M v, or a symmetric tensor T (xx xy xz yy yz zz) by M T M^T. Other items stay.
/// @param dimension the numbers of the item, which tell what it is
void transform(const Matrix& matrix, int dimension, double* item);

} // namespace rotation
