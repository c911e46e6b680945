// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "casemodel/OFSampledSurface.h"
#include "records/OFResult.h"

#include <vector>

/// The function whose surfaces plain reading takes, and whose name is not shown.
inline constexpr const char* DEFAULT_SURFACE_FUNCTION = "sampleSurface";

/// The folder in which a case keeps what functions wrote, one sub-folder per function.
dvn::Str postProcessingFolder(const dvn::Str& casePath);

/// The folder under which a case keeps its sampled surfaces, one sub-folder per time and in it one per surface.
dvn::Str sampledSurfaceRoot(const dvn::Str& casePath);

/// The sub-folder of a surface that holds the values of this type, with a leading "/"; empty for a type without one.
dvn::Str sampledFieldFolder(OFResultType type);

/// All surfaces of all functions in extended reading, with ids from 1: functions by name, and in each its surfaces by
/// name.
///
/// A folder is a surface if it has points and faces. Not every time needs to have it: an iso-surface comes and goes,
/// and functions are added while a case runs. It is listed once, with its folder of the earliest time. Functions of a
/// region write to a sub-folder of their own, which counts as a function "NAME/REGION".
std::vector<OFSampledSurface> findSampledSurfaces(const dvn::Str& casePath);
