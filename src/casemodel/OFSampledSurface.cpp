// SPDX-License-Identifier: MIT
#include "casemodel/OFSampledSurface.h"

#include "records/GroupInfo.h"

OFSampledSurface::OFSampledSurface(int id, const dvn::Str& name, const dvn::Str& folder)
    : m_name(name), m_userName(name + "[Surf]"), m_id(id), m_folder(folder)
{}

void OFSampledSurface::addSampleSurfaceInfo(int offset, DDPElementGroupInfo* info)
{
    m_globalPartId = offset + m_id;
    addTopLevelGroup({m_globalPartId, m_userName, false, "SampledSurface"}, info);
}
