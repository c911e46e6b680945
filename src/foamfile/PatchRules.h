// SPDX-License-Identifier: MIT
#pragma once

#include "records/OFBoundary.h"

#include <string_view>
#include <vector>

/// The values of patches that follow from their type, as OpenFOAM's patch fields have them.
///
/// Arrays hold item after item, `dimension` numbers each: 1, 3, or 6 for a tensor (xx xy xz yy yz zz).
namespace PatchRules {

/// What the values of a patch are made of.
enum class Source
{
    File,         ///< only what the file says
    FileElseCell, ///< the value of the cell if the file says nothing
    Cyclic,       ///< between the cells on both sides, whatever the file says; as `FileElseCell` if only one is known
    Cell,         ///< the value of the cell, whatever the file says: OpenFOAM computes it anew
    Zero,         ///< 0, whatever the file says
    Symmetry,     ///< the value of the cell, without the component along the normal of the face
    FixedNormal,  ///< the same, with that component taken from the entry `fixedValue`
    Wedge         ///< the value of the cell, turned from the middle of the wedge to its side
};

/// The source of the values on cells for a type of patch field.
Source sourceOfType(std::string_view type);
/// True for a type of mesh patch that leaves no choice of patch field: the field has the same type. Cases take such
/// fields from an include of OpenFOAM's installation.
bool isConstraint(std::string_view meshType);
/// The entry whose values a type shows if it has no `value`, such as "inletValue"; empty if there is none.
std::string_view substituteOfType(std::string_view type);

/// True for such an entry of any type.
bool isSubstitute(std::string_view keyword);

/// Removes from each vector or tensor what a plane of symmetry along its face does not let through.
void makeSymmetric(const OFBoundary& patch, int dimension, std::vector<double>* values);
/// Turns each vector or tensor from the middle plane of a wedge, which is along two axes, to the patch at its side.
void turnToWedge(const OFBoundary& patch, int dimension, std::vector<double>* values);
/// Turns the values of the cells at a cyclic patch into those on its faces, between these cells and the ones beyond it.
///
/// @param meshValues the values of all cells
/// @return false, with the values unchanged, if the patch has no coupling that fits
bool interpolateCyclic(const OFBoundary& patch, const std::vector<double>& meshValues, int dimension,
                       std::vector<double>* values);
/// Adds the normal component of other vectors to vectors that have none.
void addNormalComponent(const OFBoundary& patch, const std::vector<double>& others, std::vector<double>* values);

} // namespace PatchRules
