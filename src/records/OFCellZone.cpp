// SPDX-License-Identifier: MIT
#include "records/OFCellZone.h"

#include "records/GroupInfo.h"

void OFCellZone::addCellZoneInfo(int offset, DDPElementGroupInfo* info)
{
    m_geometryGlobalPartId = offset + m_id;
    addGroupOfPart({m_geometryGlobalPartId, m_name, false, "CellZone"}, m_partId, info);
}
