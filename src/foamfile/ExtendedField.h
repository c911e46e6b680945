// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/ListItems.h"
#include "records/OFBoundary.h"
#include "records/OFResult.h"
#include "records/OFUnit.h"

#include <optional>
#include <vector>

/// Field files read as OpenFOAM itself reads them: by the grammar of dictionaries, with macros, includes, patch groups
/// and regular expressions, and with the values that patch types have without writing them.
///
/// Nothing is guessed: a value that is not in the file and does not follow from the type of its patch is undefined.
namespace ExtendedField {

/// What a field of some class is, to the host and in its file.
struct Kind
{
    OFResultType type;
    OFResultMapping mapping;
    ListItems items; ///< of its lists; a host gets six numbers for each tensor
    bool hasPatches; ///< false for the interior alone, such as volScalarField::Internal
};

/// The kind of a class; none for one that cannot be shown.
std::optional<Kind> kindOfClass(const dvn::Str& className);

/// The first lines of a field file.
struct Header
{
    dvn::Str className;
    OFUnit unit;
};

/// Reads the class and the dimensions of a file, without its values.
/// @return false if there is no such file, or it has no header with a class
bool readHeader(const dvn::Str& path, Header* header);

/// Where the values of a field go: flat arrays, item after item, sized by the caller and full of undefined values.
struct Target
{
    OFResultMapping mapping; ///< on cells or on nodes
    int dimension;           ///< numbers of an item as the host takes them: 1, 3, or 6 for a tensor (xx xy xz yy yz zz)
    std::vector<double>* values;
    const std::vector<OFBoundary>* boundaries;
    std::vector<std::vector<double>>* patchValues; ///< one array for each of the boundaries
};

/// Reads a field with its patches. What the file does not say stays undefined.
///
/// A field on cells may have the name of one that sampled surfaces have on their nodes, so a file of the other mapping
/// is not an error and gives nothing.
/// @return false if there are no values; unless the mapping is the reason, it is in the log
bool read(const dvn::Str& path, const Target& target);

} // namespace ExtendedField
