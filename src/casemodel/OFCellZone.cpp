// SPDX-License-Identifier: MIT
#include "casemodel/OFCellZone.h"

#include "casemodel/GroupInfo.h"

void OFCellZone::addCellZoneInfo(int offset, DDPElementGroupInfo* info)
{
    m_geometryGlobalPartId = offset + m_id;
    addGroupOfPart({m_geometryGlobalPartId, m_name, false, "CellZone"}, m_partId, info);
}
