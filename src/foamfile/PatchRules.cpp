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
    {"cyclic", Source::Cyclic, {}},
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

using rotation::Matrix;
using rotation::Vector;

Vector normalOf(const OFBoundary& patch, std::size_t face)
{
    const std::vector<double>& normals = patch.faceNormals();
    const std::size_t first = face * VECTOR_COMPONENTS;
    // guard: face-normals
    return first + VECTOR_COMPONENTS <= normals.size() ? Vector{normals[first], normals[first + 1], normals[first + 2]}
                                                       : Vector{};
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

bool PatchRules::isSubstitute(std::string_view keyword)
{
    return !keyword.empty() && std::ranges::find(TYPES, keyword, &TypeRule::substitute) != TYPES.end();
}

void PatchRules::makeSymmetric(const OFBoundary& patch, int dimension, std::vector<double>* values)
{
    changeItems(patch, dimension, values, [&](std::size_t face, double* item) {
        std::array<double, TENSOR_COMPONENTS> mirrored = {};
        const auto width = static_cast<std::size_t>(dimension);
        std::copy_n(item, width, mirrored.begin());
        rotation::transform(mirrorOf(normalOf(patch, face)), dimension, mirrored.data());
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
            rotation::transform(rotation::between(nearestAxis(normal), normal), dimension, item);
        }
    });
}

bool PatchRules::interpolateCyclic(const OFBoundary& patch, const std::vector<double>& meshValues, int dimension,
                                   std::vector<double>* values)
{
    const CyclicCoupling& coupling = patch.cyclicCoupling();
    const auto width = static_cast<std::size_t>(dimension);
    const auto isCell = [cellCount = meshValues.size() / width](int cell) {
        return static_cast<std::size_t>(cell) < cellCount;
    };
    // guard: coupling-size
    if (coupling.cells.empty() || coupling.cells.size() != values->size() / width || width > TENSOR_COMPONENTS ||
        !std::ranges::all_of(coupling.cells, isCell) || !std::ranges::all_of(patch.faceToCellMapping(), isCell)) {
        return false;
    }
    const std::size_t lastRotation = coupling.rotations.size() - 1;
    for (std::size_t face = 0; face < coupling.cells.size(); ++face) {
        std::array<double, TENSOR_COMPONENTS> beyond = {};
        std::copy_n(meshValues.data() + static_cast<std::size_t>(coupling.cells[face]) * width, width, beyond.begin());
        if (!coupling.rotations.empty()) {
            rotation::transform(coupling.rotations[std::min(face, lastRotation)], dimension, beyond.data());
        }
        for (std::size_t k = 0; k < width; ++k) {
            double& value = (*values)[face * width + k];
            value = coupling.weights[face] * value + (1.0 - coupling.weights[face]) * beyond[k];
        }
    }
    return true;
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
