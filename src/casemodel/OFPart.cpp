// SPDX-License-Identifier: MIT
#include "casemodel/OFPart.h"

#include <utility>

OFPart::OFPart(int id, const dvn::Str& name, const dvn::Str& folder) : m_id(id), m_name(name), m_folder(folder) {}

void OFPart::setPiece(const dvn::Str& processor, const dvn::Str& region)
{
    m_processor = processor;
    m_pieceRegion = region;
}

std::vector<dvn::Str> OFPart::timeFolders(const dvn::Str& timeFolder) const
{
    if (m_isDefaultRegion) {
        return {timeFolder};
    }
    if (!isPiece()) {
        return {timeFolder + "/" + m_name};
    }
    const std::wstring& path = timeFolder.toStdWString();
    const std::size_t nameStart = path.rfind(L'/') + 1;
    const dvn::Str region = m_pieceRegion.isEmpty() ? dvn::Str() : "/" + m_pieceRegion;
    return {timeFolder + "/" + m_processor + region,
            dvn::Str(path.substr(0, nameStart)) + m_processor + "/" + path.substr(nameStart) + region};
}

void OFPart::setConnectivities(std::vector<int>&& connectivities)
{
    m_connectivities = std::exchange(connectivities, {});
    m_elementBlocks = itemBlocks(m_nodesCountPerElt, m_connectivities);
}

void OFPart::setNodesCountPerElt(std::vector<std::uint8_t>&& counts)
{
    m_nodesCountPerElt = std::exchange(counts, {});
    m_elementBlocks = itemBlocks(m_nodesCountPerElt, m_connectivities);
}
