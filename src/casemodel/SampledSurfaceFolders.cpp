// SPDX-License-Identifier: MIT
#include "casemodel/SampledSurfaceFolders.h"

dvn::Str sampledSurfaceRoot(const dvn::Str& casePath)
{
    return casePath + "/postProcessing/sampleSurface";
}

dvn::Str sampledFieldFolder(OFResultType type)
{
    switch (type) {
    case OFResultScalar:
        return "/scalarField";
    case OFResultVector:
        return "/vectorField";
    case OFResultTensor:
        return "/tensorField";
    default:
        return dvn::Str();
    }
}
