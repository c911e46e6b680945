// SPDX-License-Identifier: MIT
#include "casemodel/OFSampledSurface.h"

#include "casemodel/SampledSurfaceFolders.h"
#include "records/GroupInfo.h"

#include <utility>

OFSampledSurface::OFSampledSurface(int id, const dvn::Str& name, const dvn::Str& folder)
    : OFSampledSurface(id, DEFAULT_SURFACE_FUNCTION, name, folder)
{}

OFSampledSurface::OFSampledSurface(int id, const dvn::Str& function, const dvn::Str& name, const dvn::Str& folder)
    : m_function(function), m_name(name), m_userName(name + "[Surf]"), m_id(id), m_folder(folder)
{
    if (function != dvn::Str(DEFAULT_SURFACE_FUNCTION)) {
        m_userName = function + "/" + m_userName;
    }
}

dvn::Str OFSampledSurface::folderAt(const dvn::Str& casePath, const dvn::Str& timeName) const
{
    return postProcessingFolder(casePath) + "/" + m_function + "/" + timeName + "/" + m_name;
}

void OFSampledSurface::setFaces(std::vector<int> faceOfElement, std::size_t faceCount)
{
    m_faceOfElement = std::move(faceOfElement);
    m_faceCount = faceCount;
}

void OFSampledSurface::addSampleSurfaceInfo(int offset, DDPElementGroupInfo* info)
{
    m_globalPartId = offset + m_id;
    addTopLevelGroup({m_globalPartId, m_userName, false, "SampledSurface"}, info);
}
