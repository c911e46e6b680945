// SPDX-License-Identifier: MIT
#include "records/OFBoundary.h"

#include "records/GroupInfo.h"

void OFBoundary::addBoundaryInfo(int offset, DDPElementGroupInfo* info)
{
    m_geometryGlobalPartId = offset + m_boundaryID;
    addGroupOfPart({m_geometryGlobalPartId, m_patchName, true, m_type}, m_partID, info);
}

DDPElementType OFBoundary::typeFromFaceNodeCount(std::size_t nodeCount)
{
    switch (nodeCount) {
    case 3:
        return DDP_TRIANGLE;
    case 4:
        return DDP_QUADRILATERAL;
    default:
        return DDP_POLY;
    }
}

bool OFBoundary::isResultKeyString(const std::string& key)
{
    return key == "value" || key == "refValue" || key == "valueFraction";
}

bool OFBoundary::isKeyForUsingCellValue(const std::string& key)
{
    return key == "zeroGradient" || key == "empty" || key == "calculated";
}
