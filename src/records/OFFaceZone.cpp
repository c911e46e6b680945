// SPDX-License-Identifier: MIT
#include "records/OFFaceZone.h"

#include "records/GroupInfo.h"

void OFFaceZone::addFaceZoneInfo(int offset, DDPElementGroupInfo* info)
{
    m_geometryGlobalPartId = offset + m_id;
    addGroupOfPart({m_geometryGlobalPartId, m_name + " [FZ]", false, "FaceZone"}, m_partId, info);
}
