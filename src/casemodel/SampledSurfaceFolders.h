// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "records/OFResult.h"

/// The folder under which a case keeps its sampled surfaces, one sub-folder per time and in it one per surface.
dvn::Str sampledSurfaceRoot(const dvn::Str& casePath);

/// The sub-folder of a surface that holds the values of this type, with a leading "/"; empty for a type without one.
dvn::Str sampledFieldFolder(OFResultType type);
