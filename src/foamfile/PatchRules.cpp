// SPDX-License-Identifier: MIT
#include "foamfile/PatchRules.h"

#include "records/Components.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace {

using PatchRules::Source;

struct TypeRule
{
    std::string_view type;
    Source source;
    std::string_view substitute; ///< see `substituteOfType`
};

/// Types that are not in this table show what the file says. Those of couplings compute their values from both sides
/// and seldom write them; the cell's own value is what is known of them.
constexpr std::array<TypeRule, 37> TYPES = {{
    {"zeroGradient", Source::Cell, {}},
    {"empty", Source::Cell, {}},
    {"extrapolatedCalculated", Source::Cell, {}},
    {"noSlip", Source::Zero, {}},
    {"slip", Source::Symmetry, {}},
    {"symmetry", Source::Symmetry, {}},
    {"symmetryPlane", Source::Symmetry, {}},
    {"basicSymmetry", Source::Symmetry, {}},
    {"fixedNormalSlip", Source::FixedNormal, {}},
    {"wedge", Source::Wedge, {}},
    {"cyclic", Source::FileElseCell, {}},
    {"cyclicAMI", Source::FileElseCell, {}},
    {"cyclicACMI", Source::FileElseCell, {}},
    {"cyclicSlip", Source::FileElseCell, {}},
    {"cyclicPeriodicAMI", Source::FileElseCell, {}},
    {"jumpCyclic", Source::FileElseCell, {}},
    {"fan", Source::FileElseCell, {}},
    {"processor", Source::FileElseCell, {}},
    {"processorCyclic", Source::FileElseCell, {}},
    {"nonuniformTransformCyclic", Source::FileElseCell, {}},
    {"overset", Source::FileElseCell, {}},
    {"fixedFluxPressure", Source::FileElseCell, {}},
    {"fixedFluxExtrapolatedPressure", Source::FileElseCell, {}},
    {"kqRWallFunction", Source::Cell, {}},
    {"fluxCorrectedVelocity", Source::Cell, {}},
    {"advective", Source::FileElseCell, {}},
    {"waveTransmissive", Source::FileElseCell, {}},
    {"inletOutlet", Source::File, "inletValue"},
    {"inletOutletTotalTemperature", Source::File, "T0"},
    {"outletInlet", Source::File, "outletValue"},
    {"freestream", Source::File, "freestreamValue"},
    {"freestreamPressure", Source::File, "freestreamValue"},
    {"freestreamVelocity", Source::File, "freestreamValue"},
    {"uniformFixedValue", Source::File, "uniformValue"},
    {"uniformInletOutlet", Source::File, "uniformInletValue"},
    {"totalPressure", Source::File, "p0"},
    {"uniformTotalPressure", Source::File, "p0"},
}};

const TypeRule* ruleOfType(std::string_view type)
{
    const auto* const rule = std::ranges::find(TYPES, type, &TypeRule::type);
    return rule == TYPES.end() ? nullptr : rule;
}

using Vector = std::array<double, VECTOR_COMPONENTS>;
using Matrix = std::array<Vector, VECTOR_COMPONENTS>;

/// The places of a symmetric matrix in the six numbers of a tensor.
constexpr std::array<std::array<std::size_t, 3>, 3> TENSOR_PLACES = {{{0, 1, 2}, {1, 3, 4}, {2, 4, 5}}};

Vector normalOf(const OFBoundary& patch, std::size_t face)
{
    const std::vector<double>& normals = patch.faceNormals();
    const std::size_t first = face * VECTOR_COMPONENTS;
    // guard: face-normals
    return first + VECTOR_COMPONENTS <= normals.size() ? Vector{normals[first], normals[first + 1], normals[first + 2]}
                                                       : Vector{};
}

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

void transform(const Matrix& matrix, int dimension, double* item)
{
    if (dimension == static_cast<int>(VECTOR_COMPONENTS)) {
        transformVector(matrix, item);
    } else if (dimension == static_cast<int>(TENSOR_COMPONENTS)) {
        transformTensor(matrix, item);
    }
}

/// Calls `change(face, item)` for each item of a patch on cells that has more than one number.
template <typename Change>
void changeItems(const OFBoundary& patch, int dimension, std::vector<double>* values, const Change& change)
{
    if (dimension <= 1) {
        return;
    }
    const auto width = static_cast<std::size_t>(dimension);
    const std::size_t count = std::min(patch.nodeCountPerFace().size(), values->size() / width);
    for (std::size_t face = 0; face < count; ++face) {
        change(face, values->data() + face * width);
    }
}

/// I - 2 n n, which mirrors at the plane of a unit normal.
Matrix mirrorOf(const Vector& normal)
{
    Matrix mirror = {};
    for (std::size_t i = 0; i < VECTOR_COMPONENTS; ++i) {
        for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
            mirror[i][k] = (i == k ? 1.0 : 0.0) - 2.0 * normal[i] * normal[k];
        }
    }
    return mirror;
}

/// The rotation that turns one unit vector into another.
Matrix rotationBetween(const Vector& from, const Vector& to)
{
    const double cosine = from[0] * to[0] + from[1] * to[1] + from[2] * to[2];
    const Vector axis = {from[1] * to[2] - from[2] * to[1], from[2] * to[0] - from[0] * to[2],
                         from[0] * to[1] - from[1] * to[0]};
    const double sineSquared = axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2];
    Matrix rotation = {};
    for (std::size_t i = 0; i < VECTOR_COMPONENTS; ++i) {
        for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
            rotation[i][k] = (i == k ? cosine : 0.0) + to[i] * from[k] - from[i] * to[k];
            rotation[i][k] += sineSquared > 0.0 ? (1.0 - cosine) * axis[i] * axis[k] / sineSquared : 0.0;
        }
    }
    return rotation;
}

/// The axis that a normal is nearest to, in its direction: the normal of the middle plane of a wedge.
Vector nearestAxis(const Vector& normal)
{
    const auto* const largest =
        std::ranges::max_element(normal, {}, [](double component) { return std::abs(component); });
    Vector axis = {};
    axis[static_cast<std::size_t>(largest - normal.begin())] = *largest < 0.0 ? -1.0 : 1.0;
    return axis;
}

} // namespace

Source PatchRules::sourceOfType(std::string_view type)
{
    const TypeRule* const rule = ruleOfType(type);
    return rule == nullptr ? Source::File : rule->source;
}

bool PatchRules::isConstraint(std::string_view meshType)
{
    static constexpr std::array<std::string_view, 12> CONSTRAINTS = {
        "empty",      "wedge",      "symmetry",  "symmetryPlane",   "cyclic",  "cyclicAMI",
        "cyclicACMI", "cyclicSlip", "processor", "processorCyclic", "overset", "nonuniformTransformCyclic"};
    return std::ranges::find(CONSTRAINTS, meshType) != CONSTRAINTS.end();
}

std::string_view PatchRules::substituteOfType(std::string_view type)
{
    const TypeRule* const rule = ruleOfType(type);
    return rule == nullptr ? std::string_view() : rule->substitute;
}

void PatchRules::makeSymmetric(const OFBoundary& patch, int dimension, std::vector<double>* values)
{
    changeItems(patch, dimension, values, [&](std::size_t face, double* item) {
        std::array<double, TENSOR_COMPONENTS> mirrored = {};
        const auto width = static_cast<std::size_t>(dimension);
        std::copy_n(item, width, mirrored.begin());
        transform(mirrorOf(normalOf(patch, face)), dimension, mirrored.data());
        for (std::size_t k = 0; k < width; ++k) {
            item[k] = 0.5 * (item[k] + mirrored[k]);
        }
    });
}

void PatchRules::turnToWedge(const OFBoundary& patch, int dimension, std::vector<double>* values)
{
    changeItems(patch, dimension, values, [&](std::size_t face, double* item) {
        const Vector normal = normalOf(patch, face);
        if (normal != Vector{}) {
            transform(rotationBetween(nearestAxis(normal), normal), dimension, item);
        }
    });
}

void PatchRules::addNormalComponent(const OFBoundary& patch, const std::vector<double>& others,
                                    std::vector<double>* values)
{
    changeItems(patch, static_cast<int>(VECTOR_COMPONENTS), values, [&](std::size_t face, double* item) {
        const std::size_t first = face * VECTOR_COMPONENTS;
        // The reader of fields, the only caller, passes arrays of one size.
        if (first + VECTOR_COMPONENTS > others.size()) {
            return;
        }
        const Vector normal = normalOf(patch, face);
        const double component =
            normal[0] * others[first] + normal[1] * others[first + 1] + normal[2] * others[first + 2];
        for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
            item[k] += component * normal[k];
        }
    });
}
