// SPDX-License-Identifier: MIT
#include "records/Rotation.h"

#include <algorithm>
#include <cstddef>

using rotation::Matrix;
using rotation::Vector;

namespace {

/// The places of a symmetric matrix in the six numbers of a tensor.
constexpr std::array<std::array<std::size_t, 3>, 3> TENSOR_PLACES = {{{0, 1, 2}, {1, 3, 4}, {2, 4, 5}}};

Vector times(const Matrix& matrix, const double* vector)
{
    Vector product = {};
    for (std::size_t i = 0; i < VECTOR_COMPONENTS; ++i) {
        for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
            product[i] += matrix[i][k] * vector[k];
        }
    }
    return product;
}

void transformVector(const Matrix& matrix, double* vector)
{
    std::ranges::copy(times(matrix, vector), vector);
}

/// Replaces T by M T M^T.
void transformTensor(const Matrix& matrix, double* tensor)
{
    Matrix half = {};
    for (std::size_t column = 0; column < VECTOR_COMPONENTS; ++column) {
        const Vector vector = {tensor[TENSOR_PLACES[0][column]], tensor[TENSOR_PLACES[1][column]],
                               tensor[TENSOR_PLACES[2][column]]};
        const Vector product = times(matrix, vector.data());
        for (std::size_t row = 0; row < VECTOR_COMPONENTS; ++row) {
            half[row][column] = product[row];
        }
    }
    for (std::size_t row = 0; row < VECTOR_COMPONENTS; ++row) {
        const Vector product = times(matrix, half[row].data());
        for (std::size_t column = row; column < VECTOR_COMPONENTS; ++column) {
            tensor[TENSOR_PLACES[row][column]] = product[column];
        }
    }
}

} // namespace

double rotation::dot(const Vector& a, const Vector& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector rotation::cross(const Vector& a, const Vector& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Matrix rotation::between(const Vector& from, const Vector& to)
{
    const double cosine = dot(from, to);
    const Vector axis = cross(from, to);
    const double sineSquared = dot(axis, axis);
    Matrix matrix = {};
    for (std::size_t i = 0; i < VECTOR_COMPONENTS; ++i) {
        for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
            matrix[i][k] = (i == k ? cosine : 0.0) + to[i] * from[k] - from[i] * to[k];
            matrix[i][k] += sineSquared > 0.0 ? (1.0 - cosine) * axis[i] * axis[k] / sineSquared : 0.0;
        }
    }
    return matrix;
}

Matrix rotation::about(const Vector& axis, double cosine, double sine)
{
    const Matrix crossProduct = {Vector{0.0, -axis[2], axis[1]}, Vector{axis[2], 0.0, -axis[0]},
                                 Vector{-axis[1], axis[0], 0.0}};
    Matrix matrix = {};
    for (std::size_t i = 0; i < VECTOR_COMPONENTS; ++i) {
        for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
            matrix[i][k] = (i == k ? cosine : 0.0) + sine * crossProduct[i][k] + (1.0 - cosine) * axis[i] * axis[k];
        }
    }
    return matrix;
}

void rotation::transform(const Matrix& matrix, int dimension, double* item)
{
    if (dimension == static_cast<int>(VECTOR_COMPONENTS)) {
        transformVector(matrix, item);
    } else if (dimension == static_cast<int>(TENSOR_COMPONENTS)) {
        transformTensor(matrix, item);
    }
}
