// SPDX-License-Identifier: MIT
//
// The values of sampled surfaces in extended reading.
#pragma once

#include "DvnCore/Str.h"
#include "casemodel/OFSampledSurface.h"
#include "records/OFResult.h"

#include <vector>

/// A field of a surface at some time. Its file does not say where the values are; their number does.
struct SampledField
{
    dvn::Str name; ///< of the file, less ".gz"
    OFResultType type;
    OFResultMapping mapping; ///< on nodes, or on cells for values on faces
};

/// The fields in a surface's folder of some time, by kind and then by name. Only the first lines of their files are
/// read.
///
/// A file that has as many values as the surface has points at that time holds values on nodes, else one that has as
/// many as it has faces holds values on cells. Other files, and those that were set aside (p.orig, p~), do not count.
std::vector<SampledField> sampledFieldsIn(const dvn::Str& folder);

/// Reads the values of a result at some time for the elements or nodes of a surface.
///
/// A surface that has other points or faces at that time than those that the host was given, as an iso-surface has, has
/// no values, which leaves a line in the log.
/// @param folder         the surface's folder of that time
/// @param[in,out] values undefined values for all nodes or elements; they stay if there are no others
void readSampledField(const OFSampledSurface& surface, const dvn::Str& folder, const OFResult& result,
                      std::vector<double>* values);
